#pragma once
#include <QAccessible>

class QWidget;

// Gives a widget without an accessible interface of its own a role. Screen readers may pass over a
// widget without a role. The first call comes before the widget gets its name, because Qt keeps the
// interface that it made first.
void setAccessibleRole(QWidget* widget, QAccessible::Role role);
