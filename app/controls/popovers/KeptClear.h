#pragma once
#include <QList>
#include <QRect>

class QWidget;

// Interface of a window with areas that popovers should not cover. keptClear() returns those for a
// popover of `owner`, in window coordinates.
class KeptClear {
public:
    virtual ~KeptClear() = default;
    virtual QList<QRect> keptClear(const QWidget* owner) const = 0;
};
