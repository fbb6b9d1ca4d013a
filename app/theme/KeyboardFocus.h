#pragma once

#include <Qt>

class QApplication;
class QFocusEvent;
class QWidget;

// Draws a ring around the control that got the focus by keyboard. A control calls entered() in its
// focusInEvent() and left() in its focusOutEvent(). Its dynamic property "focusRadius" sets the
// corner radius, in pixels.
namespace KeyboardFocus {
void entered(QWidget* control, const QFocusEvent* event);
void left(QWidget* control);

// The reason to pass to setFocus() when the program moves the focus. If the last input was a key,
// it counts as focus by keyboard.
Qt::FocusReason reason();
void watch(QApplication& application);    // records for reason() whether the last input was a key
}    // namespace KeyboardFocus
