#pragma once

#include "canvas/PixelRect.h"
#include "model/ImagePlacement.h"
#include "model/SocialFormat.h"

#include <QRectF>
#include <QSizeF>

#include <optional>

// Where the photo lies on a canvas, for the screen, the export and the mouse. Sizes in canvas
// pixels.
namespace ImagePlacementGeometry {

// The photo's rectangle on the canvas; null when either size is empty.
QRectF imageRect(QSizeF imageSize, QSizeF canvas, const ImagePlacement& placement);

// Moves the rectangle without resizing it. On each axis, a photo longer than the canvas leaves no
// gap at the edges, and a shorter one is centred.
QRectF clamped(const QRectF& rect, const QRectF& canvas, ImageFitMode mode);

// The placement with its offset changed to where the clamped rectangle lies.
ImagePlacement clamped(const ImagePlacement& placement, QSizeF imageSize, QSizeF canvas);

// The pixels that a photo at `rect` covers: its edges rounded, so that neighbours meet, and at
// least one pixel each way. Nothing for an empty rectangle, or one further out than any photo's.
std::optional<PixelRect> wholePixels(const QRectF& rect);

// The placement after a pan or a zoom from `current` towards `wanted`, clamped on the format's
// export canvas, whatever size is shown. A pan that leaves the photo on its export pixels returns
// `current`.
ImagePlacement moved(const ImagePlacement& current, const ImagePlacement& wanted, QSizeF imageSize,
                     SocialFormat format);

}    // namespace ImagePlacementGeometry
