#pragma once

#include "canvas/TextLayoutMetrics.h"
#include "model/PublicationItem.h"

#include <QColor>
#include <QList>
#include <QPainterPath>
#include <QRectF>
#include <QSize>

// How far the point of a stroked corner may reach, in widths of the stroke: a sharper corner is cut
// there. The plain one leaves right angles whole.
inline constexpr double plainMiterLimit = 2, sharpMiterLimit = 10;

// A shape ready to paint, in canvas pixels.
struct LaidOutShape {
    ShapeLayer source;
    QPainterPath outline;
    QColor fill;
    QColor stroke;
    double strokeWidth = 0;    // 0: no stroke
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
    std::optional<QColor> fill;    // of the box, where there is one
    std::optional<LaidOutShadow> shadow;
    LaidOutText text;
    bool overflows = false;    // the smallest size is still too large for the box
    QPointF textPosition;
    QColor foreground;
};

// An item laid out once for one output size: every size fitted, every line broken. Whatever shows
// the item paints this, through a transform of its own, and never fits again. Painted on the thread
// that made it.
struct ItemLayout {
    QSize canvas;        // whole pixels
    double scale = 0;    // pixels per design unit
    QRectF photoRect;    // empty: no photo
    QList<LaidOutShape> shapes;
    QList<LaidOutTextLayer> texts;
};

// `outputSize` in pixels, each side rounded to the nearest; `reference` is the canvas size in
// design units.
// `known`: a layout whose texts may be taken over where they would come out the same, as of the
// item before an edit.
ItemLayout layOut(const PublicationItem& item, QSizeF outputSize, QSizeF reference,
                  const ItemLayout& known = {});

// The font scale at which the layer's type is as large as its box lets it be; nothing where it
// wants no more than that.
std::optional<double> fontScaleInBox(const TextLayer& layer, QSizeF outputSize, QSizeF reference);

// What painting them may touch at most, in canvas pixels.
QRectF extentOf(const LaidOutShape& shape);
QRectF extentOf(const LaidOutTextLayer& layer);
