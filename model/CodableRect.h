#pragma once

#include <QRectF>
#include <QSizeF>

// The frame of a layer in fractions of the canvas, origin top left, y downwards. Not a QRectF,
// because that compares approximately.
struct CodableRect {
    double x = 0, y = 0, width = 0, height = 0;

    CodableRect() = default;
    CodableRect(double left, double top, double w, double h) : x(left), y(top), width(w), height(h)
    {
    }
    explicit CodableRect(const QRectF& rect)
        : CodableRect(rect.x(), rect.y(), rect.width(), rect.height())
    {
    }

    QRectF cg() const { return {x, y, width, height}; }

    bool operator==(const CodableRect&) const = default;
};
