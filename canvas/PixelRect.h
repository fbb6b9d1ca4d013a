#pragma once

#include <QRect>
#include <QSize>

#include <algorithm>

// A rectangle of whole pixels. Its 64-bit numbers have a wider range than those of a QRect.
struct PixelRect {
    qint64 x = 0, y = 0, width = 0, height = 0;

    PixelRect() = default;
    PixelRect(qint64 left, qint64 top, qint64 columns, qint64 rows)
        : x(left), y(top), width(columns), height(rows)
    {
    }
    PixelRect(QSize size) : width(size.width()), height(size.height()) {}
    bool operator==(const PixelRect&) const = default;

    // Empty when the two rectangles do not overlap.
    QRect intersected(const QRect& other) const
    {
        const auto across = [&](qint64 edge) {
            return int(std::clamp<qint64>(edge, other.x(), other.x() + other.width()));
        };
        const auto down = [&](qint64 edge) {
            return int(std::clamp<qint64>(edge, other.y(), other.y() + other.height()));
        };
        const QPoint corner(across(x), down(y));
        return {corner, QSize(across(x + width) - corner.x(), down(y + height) - corner.y())};
    }
};
