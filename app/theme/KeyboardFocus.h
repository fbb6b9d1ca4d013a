#pragma once

#include <Qt>

class QApplication;
class QFocusEvent;
class QWidget;

// The focus ring outside of a control, for focus that the keyboard gave. A control calls these from
// its focus events; its dynamic property "focusRadius" rounds the ring.
namespace KeyboardFocus {
void entered(QWidget* control, const QFocusEvent* event);
void left(QWidget* control);

// Of focus that the program moves: as by the keyboard where a key was what came last.
Qt::FocusReason reason();
void watch(QApplication& application);    // for `reason`
}    // namespace KeyboardFocus
