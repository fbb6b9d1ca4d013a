#include "app/desktop/ShortcutView.h"

#include <QKeyEvent>

void ShortcutView::keyPressEvent(QKeyEvent* event)
{
    const auto actionOf = [this](int key) -> std::function<void()> {
        switch (key) {
        case Qt::Key_Left:
            return m_shortcuts.onLeft;
        case Qt::Key_Right:
            return m_shortcuts.onRight;
        case Qt::Key_Backspace:
        case Qt::Key_Delete:
            return m_shortcuts.onDelete;
        default:
            return {};
        }
    };
    if (const auto action = actionOf(event->key()))
        action();
    else
        QWidget::keyPressEvent(event);
}

void ShortcutView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!window()->focusWidget())
        setFocus(Qt::OtherFocusReason);
}
