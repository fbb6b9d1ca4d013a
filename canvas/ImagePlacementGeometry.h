#pragma once

#include "model/ImagePlacement.h"

#include <QRectF>
#include <QSizeF>

// Where the photo lies on a canvas. One answer for the screen, the export and the mouse; sizes in
// canvas pixels.
namespace ImagePlacementGeometry {

// The zero rectangle when either size is empty.
QRectF imageRect(QSizeF imageSize, QSizeF canvas, const ImagePlacement& placement);

// The rectangle moved, never resized: an overhanging photo covers the canvas from edge to edge, a
// smaller one is centred. Each axis by itself.
QRectF clamped(const QRectF& rect, const QRectF& canvas, ImageFitMode mode);

// The placement whose offset is the one that the clamped rectangle really has.
ImagePlacement clamped(const ImagePlacement& placement, QSizeF imageSize, QSizeF canvas);

}    // namespace ImagePlacementGeometry
