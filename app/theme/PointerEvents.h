#pragma once

#include <QEvent>

// Whether the mouse or its wheel caused the event. A widget that lies over others accepts these
// events, so that they do not reach the widgets below it.
inline bool isPointerEvent(const QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        return true;
    default:
        return false;
    }
}
