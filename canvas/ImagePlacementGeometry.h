#pragma once

#include "canvas/PixelRect.h"
#include "model/ImagePlacement.h"
#include "model/SocialFormat.h"

#include <QRectF>
#include <QSizeF>

#include <optional>

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

// The pixels on which a photo with that rectangle is drawn, rounded by its edges, so that
// neighbours meet; nothing of an extent keeps one pixel. Nothing for an empty rectangle, and for
// one that reaches beyond any photo's.
std::optional<PixelRect> wholePixels(const QRectF& rect);

// What a pan or a zoom that asks for `wanted` makes of `current`: clamped on the format's export
// canvas, whatever the size that it is shown at. A pan that leaves the photo on its pixels there
// changes nothing.
ImagePlacement moved(const ImagePlacement& current, const ImagePlacement& wanted, QSizeF imageSize,
                     SocialFormat format);

}    // namespace ImagePlacementGeometry
