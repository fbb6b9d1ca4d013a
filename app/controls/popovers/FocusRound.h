#pragma once

class QKeyEvent;
class QWidget;

// Moves the keyboard focus to the next or the previous stop inside of `area`, round its ends. False
// where nothing inside takes the focus.
bool moveFocusRound(QWidget* area, bool next);

// Enter presses the button that has the focus inside of `area`. False where it does not apply.
bool pressFocused(const QKeyEvent* event, const QWidget* area);
