#pragma once
#include <QWidget>

class QStackedWidget;
class ShapesPanel;
class TabStrip;
class TemplatesPanel;
class TextPanel;

enum class SideTab { text, shapes, templates };

// What can be changed in the current image, by kind. Pages that are too high scroll below the tabs.
class SidePanel : public QWidget {
    Q_OBJECT
public:
    explicit SidePanel(QWidget* parent = nullptr);

    TextPanel* textPanel() const { return m_text; }
    ShapesPanel* shapesPanel() const { return m_shapes; }
    TemplatesPanel* templatesPanel() const { return m_templates; }

    void setTab(SideTab tab);    // shows; emits nothing
    void endEdits();             // lets go of held values and closes what is open over it
    SideTab tab() const;
    enum class Content { none, image };
    void setContent(Content content);
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void tabChosen(SideTab tab);    // by the user

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TabStrip* m_tabs;
    QStackedWidget* m_pages;
    QStackedWidget* m_textPages;
    TextPanel* m_text;
    ShapesPanel* m_shapes;
    TemplatesPanel* m_templates;
};
