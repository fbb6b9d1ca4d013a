#pragma once

class QKeyEvent;
class QWidget;

// Moves the keyboard focus to the next or the previous stop inside `area`, from the last one round
// to the first. Returns false when nothing inside takes the focus.
bool moveFocusRound(QWidget* area, bool next);

// Lets Enter press the focused button inside `area`. Returns false for another key or focus.
bool pressFocused(const QKeyEvent* event, const QWidget* area);
