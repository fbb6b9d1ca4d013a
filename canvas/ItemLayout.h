#pragma once

#include "canvas/TextLayoutMetrics.h"
#include "model/PublicationItem.h"

#include <QColor>
#include <QList>
#include <QPainterPath>
#include <QRectF>
#include <QSize>

// How far the point of a stroked corner may reach, in stroke widths; a sharper corner is cut off.
// plainMiterLimit leaves right angles whole.
inline constexpr double plainMiterLimit = 2, sharpMiterLimit = 10;

// A shape ready to paint, in canvas pixels.
struct LaidOutShape {
    ShapeLayer source;
    QPainterPath outline;
    QColor fill;
    QColor stroke;
    double strokeWidth = 0;    // canvas pixels; 0 for no stroke
    double miterLimit = plainMiterLimit;
};

// A shadow under a rounded box, in canvas pixels.
struct LaidOutShadow {
    QPointF offset;      // y downwards
    double sigma = 0;    // standard deviation of the blur
    QColor color;
};

// A visible text layer ready to paint, in canvas pixels.
struct LaidOutTextLayer {
    TextLayer source;
    QRectF box;
    double cornerRadius = 0;       // at most half the box's shorter side
    std::optional<QColor> fill;    // colour of the box; nothing without a box
    std::optional<LaidOutShadow> shadow;
    LaidOutText text;
    bool overflows = false;    // even the smallest type does not fit the box
    QPointF textPosition;
    QColor foreground;
};

// An item laid out for one output size: every text fitted, every line broken. To show the item at
// another scale, paint this layout through a transform instead of fitting again. Paint it on the
// thread that made it.
struct ItemLayout {
    QSize canvas;        // whole pixels
    double scale = 0;    // pixels per design unit
    QRectF photoRect;    // empty without a photo
    QList<LaidOutShape> shapes;
    QList<LaidOutTextLayer> texts;
};

// Lays the item out. `outputSize` in pixels, each side rounded; `reference` is the canvas size in
// design units. `known`: an earlier layout, as before an edit, whose texts are reused where they
// have not changed.
ItemLayout layOut(const PublicationItem& item, QSizeF outputSize, QSizeF reference,
                  const ItemLayout& known = {});

// The font scale at which the layer's type just fits its box; nothing when it already fits.
std::optional<double> fontScaleInBox(const TextLayer& layer, QSizeF outputSize, QSizeF reference);

// The canvas pixels that painting may touch at most.
QRectF extentOf(const LaidOutShape& shape);
QRectF extentOf(const LaidOutTextLayer& layer);
