#pragma once
#include "app/theme/WindowClass.h"

#include <QWidget>

class QStackedWidget;
class QVBoxLayout;
class ShapesPanel;
class TabStrip;
class TemplatesPanel;
class TextPanel;

enum class SideTab { text, shapes, templates };

// Three tabs: texts and shapes of the current image, and templates. A page that is too high scrolls
// below the tabs.
class SidePanel : public QWidget {
    Q_OBJECT
public:
    explicit SidePanel(QWidget* parent = nullptr);

    TextPanel* textPanel() const { return m_text; }
    ShapesPanel* shapesPanel() const { return m_shapes; }
    TemplatesPanel* templatesPanel() const { return m_templates; }

    // Shows `row` above the texts, and above the note that stands there without images. `stops`:
    // the controls of the row in the order of Tab.
    void setTextHeader(QWidget* row, const QList<QWidget*>& stops);
    void setClass(WindowClass windowClass);
    void setTab(SideTab tab);    // shows the tab; emits nothing
    void endEdits();    // ends the dragging of sliders and closes the popovers of the panel
    SideTab tab() const;
    enum class Content { none, image };
    void setContent(Content content);
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void tabChosen(SideTab tab);    // chosen by the user

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showPage(int index);
    void placeTextHeader();

    TabStrip* m_tabs;
    QStackedWidget* m_pages;
    QStackedWidget* m_textPages;
    QVBoxLayout* m_emptyRows;    // of the text page without images
    QWidget* m_textHeader = nullptr;
    QList<QWidget*> m_headerStops;
    TextPanel* m_text;
    ShapesPanel* m_shapes;
    TemplatesPanel* m_templates;
};
