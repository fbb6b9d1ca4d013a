#pragma once
#include "app/desktop/KeyboardShortcutCatcher.h"

#include <QWidget>

// Catches the keys that the focused widget inside of it has not used. Has the focus itself as long
// as no widget of its window has it. Never calls onUndo and onRedo: those are for the notifications
// of undo and redo, which its owner follows.
class ShortcutView : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;
    void setShortcuts(const KeyboardShortcutCatcher& shortcuts) { m_shortcuts = shortcuts; }
    const KeyboardShortcutCatcher& shortcuts() const { return m_shortcuts; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    KeyboardShortcutCatcher m_shortcuts;
};
