#pragma once
#include <QApplication>
#include <QHoverEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

#include <gtest/gtest.h>

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

// The first control in `parent` with this accessible name; a failure if there is none.
template <typename Widget>
Widget* named(QWidget* parent, const QString& name)
{
    for (auto* widget : parent->findChildren<Widget*>()) {
        if (widget->accessibleName() == name)
            return widget;
    }
    ADD_FAILURE() << "no " << qPrintable(name);
    return nullptr;
}
