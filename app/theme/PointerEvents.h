#pragma once

#include <QEvent>

// Whether the mouse or its wheel caused the event. A widget that lies over others takes these
// events, so that none passes through it.
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
