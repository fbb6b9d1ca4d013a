#include "canvas/ImagePlacementGeometry.h"

#include <algorithm>
#include <cmath>

namespace {

// The least number of canvas pixels per photo pixel, whatever the zoom.
constexpr double smallestScale = 0.1;
// Limit of coordinates, in pixels: even an extremely long and narrow photo does not reach it.
constexpr double furthestEdge = 1e12;

double clampedOrigin(double origin, double length, double canvasOrigin, double canvasLength)
{
    if (canvasLength < length)
        return std::min(std::max(origin, canvasOrigin + canvasLength - length), canvasOrigin);
    return canvasOrigin + canvasLength / 2 - length / 2;
}

}    // namespace

QRectF ImagePlacementGeometry::imageRect(QSizeF imageSize, QSizeF canvas,
                                         const ImagePlacement& placement)
{
    if (imageSize.width() <= 0 || imageSize.height() <= 0 || canvas.width() <= 0 ||
        canvas.height() <= 0)
        return {};
    const double sx = canvas.width() / imageSize.width();
    const double sy = canvas.height() / imageSize.height();
    const double base = placement.mode == ImageFitMode::fill ? std::max(sx, sy) : std::min(sx, sy);
    const double scale = std::max(base * placement.zoom, smallestScale);
    const QSizeF size = imageSize * scale;
    const QRectF rect(
        QPointF(canvas.width() / 2 - size.width() / 2 + placement.offset.x * canvas.width(),
                canvas.height() / 2 - size.height() / 2 + placement.offset.y * canvas.height()),
        size);
    return clamped(rect, QRectF(QPointF(), canvas), placement.mode);
}

// Ignores the mode: on an axis where the photo is smaller than the canvas it is centred in both
// modes, as ImageFitMode::fit requires.
QRectF ImagePlacementGeometry::clamped(const QRectF& rect, const QRectF& canvas, ImageFitMode)
{
    return {clampedOrigin(rect.x(), rect.width(), canvas.x(), canvas.width()),
            clampedOrigin(rect.y(), rect.height(), canvas.y(), canvas.height()), rect.width(),
            rect.height()};
}

ImagePlacement ImagePlacementGeometry::clamped(const ImagePlacement& placement, QSizeF imageSize,
                                               QSizeF canvas)
{
    const QRectF rect = imageRect(imageSize, canvas, placement);
    ImagePlacement result = placement;
    result.offset.x = (rect.center().x() - canvas.width() / 2) / std::max(canvas.width(), 1.0);
    result.offset.y = (rect.center().y() - canvas.height() / 2) / std::max(canvas.height(), 1.0);
    return result;
}

std::optional<PixelRect> ImagePlacementGeometry::wholePixels(const QRectF& rect)
{
    const auto isUsable = [](double edge) { return std::abs(edge) <= furthestEdge; };
    if (!(rect.width() > 0) || !(rect.height() > 0) || !isUsable(rect.left()) ||
        !isUsable(rect.top()) || !isUsable(rect.right()) || !isUsable(rect.bottom()))
        return std::nullopt;
    const auto x = std::lround(rect.left()), y = std::lround(rect.top());
    return PixelRect(x, y, std::max(std::lround(rect.right()) - x, 1L),
                     std::max(std::lround(rect.bottom()) - y, 1L));
}

ImagePlacement ImagePlacementGeometry::moved(const ImagePlacement& current,
                                             const ImagePlacement& wanted, QSizeF imageSize,
                                             SocialFormat format)
{
    if (imageSize.isEmpty())
        return {wanted.mode, wanted.zoom, current.offset};
    const QSizeF canvas = exportSize(format);
    const auto pixels = [&](const ImagePlacement& placement) {
        return wholePixels(imageRect(imageSize, canvas, placement));
    };
    const bool isPan = wanted.mode == current.mode && wanted.zoom == current.zoom;
    const ImagePlacement result = clamped(wanted, imageSize, canvas);
    return isPan && pixels(result) == pixels(current) ? current : result;
}
