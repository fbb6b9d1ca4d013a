#include "canvas/ItemPainter.h"

#include "canvas/BoxShadow.h"
#include "canvas/PhotoResampler.h"

#include <QPainter>
#include <QPen>

#include <cmath>

namespace {

// A photo that reaches further, in pixels, shows one colour at most.
constexpr double largestPlace = 1e8;

// Rounded by its edges, so that neighbours meet; nothing of an extent keeps one pixel.
std::optional<QRect> wholePixels(const QRectF& rect)
{
    const auto isUsable = [](double edge) { return std::abs(edge) <= largestPlace; };
    if (!(rect.width() > 0) || !(rect.height() > 0) || !isUsable(rect.left()) ||
        !isUsable(rect.top()) || !isUsable(rect.right()) || !isUsable(rect.bottom()))
        return std::nullopt;
    const auto x = std::lround(rect.left()), y = std::lround(rect.top());
    return QRect(int(x), int(y), int(std::max(std::lround(rect.right()) - x, 1L)),
                 int(std::max(std::lround(rect.bottom()) - y, 1L)));
}

QRect devicePixels(const QPainter& painter)
{
    return {0, 0, painter.device()->width(), painter.device()->height()};
}

void paintPhoto(QPainter& painter, const QRectF& photoRect, const QImage& photo,
                ResampledPhoto* remembered)
{
    const auto place = wholePixels(painter.deviceTransform().mapRect(photoRect));
    if (photo.isNull() || !place)
        return;
    const QRect window = place->intersected(devicePixels(painter)).translated(-place->topLeft());
    ResampledPhoto own;
    ResampledPhoto& known = remembered ? *remembered : own;
    if (known.source != photo.cacheKey() || known.place != *place || known.window != window)
        known = {photo.cacheKey(), *place, window, resampled(photo, place->size(), window)};
    painter.save();
    painter.resetTransform();
    painter.drawImage(place->topLeft() + window.topLeft(), known.image);
    painter.restore();
}

void paintShape(QPainter& painter, const LaidOutShape& shape)
{
    painter.fillPath(shape.outline, shape.fill);
    if (shape.strokeWidth > 0) {
        painter.strokePath(shape.outline, QPen(shape.stroke, shape.strokeWidth, Qt::SolidLine,
                                               Qt::FlatCap, Qt::MiterJoin));
    }
}

void paintShadow(QPainter& painter, const LaidOutTextLayer& layer)
{
    const QTransform toDevice = painter.deviceTransform();
    const double scale = toDevice.m11();
    const ShadowPicture picture = boxShadow(
        toDevice.mapRect(layer.box.translated(layer.shadow->offset)), layer.cornerRadius * scale,
        layer.shadow->sigma * scale, layer.shadow->color, devicePixels(painter));
    painter.save();
    painter.resetTransform();
    painter.drawImage(picture.position, picture.image);
    painter.restore();
}

void fillBox(QPainter& painter, const LaidOutTextLayer& layer)
{
    QPainterPath path;
    path.addRoundedRect(layer.box, layer.cornerRadius, layer.cornerRadius);
    painter.fillPath(path, *layer.fill);
}

void paintTextLayer(QPainter& painter, const LaidOutTextLayer& layer)
{
    // A box with a shadow is filled twice, once with the shadow and once over it: half-transparent
    // boxes are denser for it, and saved designs count on that.
    if (layer.shadow) {
        paintShadow(painter, layer);
        fillBox(painter, layer);
    }
    if (layer.fill)
        fillBox(painter, layer);
    painter.setPen(layer.foreground);
    layer.text.draw(painter, layer.textPosition);
}

}    // namespace

void paintItem(QPainter& painter, const ItemLayout& layout, const QImage& photo,
               ResampledPhoto* remembered)
{
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.fillRect(QRect(QPoint(), layout.canvas), Qt::black);
    paintPhoto(painter, layout.photoRect, photo, remembered);
    for (const LaidOutShape& shape : layout.shapes)
        paintShape(painter, shape);
    for (const LaidOutTextLayer& layer : layout.texts)
        paintTextLayer(painter, layer);
    painter.restore();
}

QImage paintedItem(const ItemLayout& layout, QSize pixels, const QImage& photo,
                   ResampledPhoto* remembered)
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull() || layout.canvas.isEmpty())
        return {};
    image.fill(Qt::black);
    QPainter painter(&image);
    if (pixels != layout.canvas) {
        // The larger of the two, so that rounding leaves no black line at an edge.
        const double scale = std::max(double(pixels.width()) / layout.canvas.width(),
                                      double(pixels.height()) / layout.canvas.height());
        painter.scale(scale, scale);
    }
    paintItem(painter, layout, photo, remembered);
    return image;
}
