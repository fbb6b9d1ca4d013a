#pragma once

class QKeyEvent;
class QWidget;

// Moves the focus to the next or the previous Tab stop inside `area`; after the last stop comes the
// first. Returns false if `area` has no Tab stop.
bool moveFocusRound(QWidget* area, bool next);

// If the key is Enter and a button inside `area` has the focus, presses the button. Returns whether
// the key was used.
bool pressFocused(const QKeyEvent* event, const QWidget* area);
