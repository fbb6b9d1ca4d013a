#pragma once
#include "app/theme/WindowClass.h"

#include <QList>
#include <QSize>
#include <QWidget>

class Control;
class ExportButtons;
class IconButton;
class JoinedButtons;
class PushButton;
class QMenu;
class SegmentedControl;
class UserAccountButton;

// What TopBar shows of a format. TopBar takes one FormatChoice for each SocialFormat, in the order
// of that enum.
struct FormatChoice {
    QString ratio;     // "4:5"
    QString title;     // "Carrusel / Post vertical"
    QString spoken;    // "4 a 5"
    QSize pixels;      // size of the exported picture
};

class TopBar : public QWidget {
    Q_OBJECT
public:
    explicit TopBar(const QList<FormatChoice>& formats, QWidget* parent = nullptr);

    void setMenu(QMenu* menu);    // not owned
    void setClass(WindowClass windowClass);
    void setFormat(int index);    // shows the format; emits nothing
    void setUndo(bool possible);
    void setRedo(bool possible);
    void setPublishing(const QString& refusal, const QString& key);    // of its button
    UserAccountButton* account() const { return m_account; }
    ExportButtons* exports() const { return m_exports; }

    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {1200, 56}; }

Q_SIGNALS:
    void importImagesRequested();
    void importFolderRequested();
    void undoRequested();
    void redoRequested();
    void formatChosen(int index);
    void publishRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();

    Control* m_mark;
    PushButton* m_images;
    PushButton* m_folder;
    JoinedButtons* m_import;
    IconButton* m_undo;
    IconButton* m_redo;
    SegmentedControl* m_formats;
    ExportButtons* m_exports;
    PushButton* m_publish;
    UserAccountButton* m_account;
    QMenu* m_menu = nullptr;
    QString m_publishTip;    // its tooltip, with or without its word
    // Where the dividers are; 0: there is none.
    int m_divider = 0, m_accountDivider = 0;
    WindowClass m_class = WindowClass::roomy;
};
