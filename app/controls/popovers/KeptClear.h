#pragma once
#include <QList>
#include <QRect>

class QWidget;

// A window that says what a popover of `owner` should leave in sight, in its own coordinates.
class KeptClear {
public:
    virtual ~KeptClear() = default;
    virtual QList<QRect> keptClear(const QWidget* owner) const = 0;
};
