#pragma once

#include "canvas/TextLayoutMetrics.h"
#include "model/PublicationItem.h"

#include <QColor>
#include <QList>
#include <QPainterPath>
#include <QRectF>
#include <QSize>

// Limits for QPen::setMiterLimit(), in stroke widths: how far the outer point of a stroked corner
// may reach before Qt cuts it off. plainMiterLimit leaves right angles whole.
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
    QPointF offset;      // y: downwards
    double sigma = 0;    // standard deviation of the blur
    QColor color;
};

// A visible text layer ready to paint, in canvas pixels.
struct LaidOutTextLayer {
    TextLayer source;
    QRectF box;
    double cornerRadius = 0;       // at most half the box's shorter side
    std::optional<QColor> fill;    // colour of the box; empty if the layer has no box
    std::optional<LaidOutShadow> shadow;
    LaidOutText text;
    bool overflows = false;    // the text does not fit the box even at the smallest size
    QPointF textPosition;
    QColor foreground;
};

// An item laid out for one output size: font sizes and line breaks of all texts are decided. To
// show the item at another scale, paint this layout scaled instead of laying the item out again.
// Paint it on the thread that made it.
struct ItemLayout {
    QSize canvas;        // whole pixels
    double scale = 0;    // pixels per design unit
    QRectF photoRect;    // empty if the item has no photo
    QList<LaidOutShape> shapes;
    QList<LaidOutTextLayer> texts;
};

// Lays the item out. `outputSize` is in pixels; ItemLayout::canvas is this size, rounded.
// `reference` is the canvas size in design units. `known` is an earlier layout of the item, for
// example before an edit; texts that have not changed since are taken from it.
ItemLayout layOut(const PublicationItem& item, QSizeF outputSize, QSizeF reference,
                  const ItemLayout& known = {});

// The fontScale at which the layer's text just fits its box; nothing if it fits at its present one.
std::optional<double> fontScaleInBox(const TextLayer& layer, QSizeF outputSize, QSizeF reference);

// A rectangle in canvas pixels; painting the shape or text changes nothing outside of it.
QRectF extentOf(const LaidOutShape& shape);
QRectF extentOf(const LaidOutTextLayer& layer);
