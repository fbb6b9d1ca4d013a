#pragma once
#include <QApplication>
#include <QHoverEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

// The functions send the events of a user's clicks, keys and pointer straight to a widget.
inline void press(QWidget& widget, QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool down = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, at, widget.mapToGlobal(at), Qt::LeftButton,
                          down ? Qt::LeftButton : Qt::NoButton, modifiers);
        QApplication::sendEvent(&widget, &event);
    }
}

inline void type(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&widget, &event);
}

// `type` is HoverEnter or HoverLeave.
inline void hover(QWidget* widget, QEvent::Type type)
{
    QHoverEvent event(type, widget->rect().center(), widget->rect().center(), QPointF());
    QApplication::sendEvent(widget, &event);
}

inline void settle()
{
    for (int i = 0; i < 5; ++i)
        QApplication::processEvents();
}
