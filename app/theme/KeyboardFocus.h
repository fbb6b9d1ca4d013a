#pragma once

#include <Qt>

class QApplication;
class QFocusEvent;
class QWidget;

// The ring around a control that has the focus by keyboard. A control calls entered() and left()
// from its focus events; its dynamic property "focusRadius" rounds the ring.
namespace KeyboardFocus {
void entered(QWidget* control, const QFocusEvent* event);
void left(QWidget* control);

// The reason for the program's own setFocus() calls: as by keyboard when the last input was a key.
Qt::FocusReason reason();
void watch(QApplication& application);    // tells reason() about the last input
}    // namespace KeyboardFocus
