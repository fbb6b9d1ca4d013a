#pragma once

#include "canvas/PixelRect.h"
#include "model/ImagePlacement.h"
#include "model/SocialFormat.h"

#include <QRectF>
#include <QSizeF>

#include <optional>

// Computes where the photo lies on a canvas, for painting on screen, exports and mouse gestures.
// `imageSize` is in photo pixels, all else in canvas pixels.
namespace ImagePlacementGeometry {

// The photo's rectangle on the canvas; null when either size is empty.
QRectF imageRect(QSizeF imageSize, QSizeF canvas, const ImagePlacement& placement);

// Moves the photo's rectangle without resizing it. On an axis where the photo is longer than the
// canvas, it leaves no gap at the edges; where it is shorter, it is centred.
QRectF clamped(const QRectF& rect, const QRectF& canvas, ImageFitMode mode);

// A copy of the placement with the offset that the clamped rectangle has.
ImagePlacement clamped(const ImagePlacement& placement, QSizeF imageSize, QSizeF canvas);

// The whole pixels that a photo at `rect` covers. The edges are rounded, but the result is at least
// one pixel wide and high. Nothing if `rect` is empty or its coordinates are larger than any photo
// needs.
std::optional<PixelRect> wholePixels(const QRectF& rect);

// The placement after a pan or zoom from `current` to `wanted`, clamped on the format's export
// canvas, whatever its size on screen. Returns `current` for a pan that is too short to move the
// photo by a pixel of the export.
ImagePlacement moved(const ImagePlacement& current, const ImagePlacement& wanted, QSizeF imageSize,
                     SocialFormat format);

}    // namespace ImagePlacementGeometry
