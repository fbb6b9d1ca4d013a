#pragma once
#include <QList>
#include <QRect>

class QWidget;

// Implemented by a window that has areas which a popover of `owner` should not cover. The areas are
// in window coordinates.
class KeptClear {
public:
    virtual ~KeptClear() = default;
    virtual QList<QRect> keptClear(const QWidget* owner) const = 0;
};
