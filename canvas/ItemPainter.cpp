#include "canvas/ItemPainter.h"

#include "canvas/BoxShadow.h"
#include "canvas/ImagePlacementGeometry.h"
#include "canvas/PhotoResampler.h"

#include <QPainter>
#include <QPen>

namespace {

QRect devicePixels(const QPainter& painter)
{
    return {0, 0, painter.device()->width(), painter.device()->height()};
}

void paintShape(QPainter& painter, const LaidOutShape& shape)
{
    painter.fillPath(shape.outline, shape.fill);
    if (shape.strokeWidth > 0) {
        QPen pen(shape.stroke, shape.strokeWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
        pen.setMiterLimit(shape.miterLimit);
        painter.strokePath(shape.outline, pen);
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

void paintTextBox(QPainter& painter, const LaidOutTextLayer& layer)
{
    // A box with a shadow is filled twice, which makes translucent boxes denser; saved designs rely
    // on it.
    if (layer.shadow) {
        paintShadow(painter, layer);
        fillBox(painter, layer);
    }
    if (layer.fill)
        fillBox(painter, layer);
}

void paintText(QPainter& painter, const LaidOutTextLayer& layer)
{
    painter.setPen(layer.foreground);
    layer.text.draw(painter, layer.textPosition);
}

// The device pixels that may change when something inside `extent` is painted. `extent` is in
// canvas pixels.
QRect touched(const QPainter& painter, const QRectF& extent)
{
    return painter.deviceTransform().mapRect(extent).toAlignedRect().adjusted(-1, -1, 1, 1);
}

}    // namespace

double pictureScale(const ItemLayout& layout, QSize pixels)
{
    if (pixels == layout.canvas || layout.canvas.isEmpty())
        return 1;
    // Takes the larger of the two ratios: with the smaller one, rounding could leave a black line
    // at an edge of the picture.
    return std::max(double(pixels.width()) / layout.canvas.width(),
                    double(pixels.height()) / layout.canvas.height());
}

std::optional<PhotoPlace> photoPlace(const ItemLayout& layout, QSize pixels)
{
    const double scale = pictureScale(layout, pixels);
    const auto whole = ImagePlacementGeometry::wholePixels(
        QTransform::fromScale(scale, scale).mapRect(layout.photoRect));
    if (!whole)
        return std::nullopt;
    return PhotoPlace{*whole, whole->intersected(QRect(QPoint(), pixels))};
}

ResampledPhoto resampledPhoto(const QImage& photo, const PhotoPlace& place)
{
    return {photo.cacheKey(), place, resampled(photo, place.whole, place.shown)};
}

void paintItem(QImage& picture, const ItemLayout& layout, const ResampledPhoto& photo,
               const QRect& part, const TextObserver& aboutToDraw)
{
    QPainter painter(&picture);
    painter.setClipRect(part);
    painter.fillRect(part, Qt::black);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.drawImage(photo.place.shown.topLeft(), photo.image);
    if (const double scale = pictureScale(layout, picture.size()); scale != 1)
        painter.scale(scale, scale);
    const auto shows = [&](const auto& layer) {
        return touched(painter, extentOf(layer)).intersects(part);
    };
    for (const LaidOutShape& shape : layout.shapes) {
        if (shows(shape))
            paintShape(painter, shape);
    }
    for (const LaidOutTextLayer& layer : layout.texts) {
        if (!shows(layer))
            continue;
        paintTextBox(painter, layer);
        if (aboutToDraw)
            aboutToDraw(layer, picture);
        paintText(painter, layer);
    }
}

QImage paintedItem(const ItemLayout& layout, QSize pixels, const QImage& photo,
                   const TextObserver& aboutToDraw)
{
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull() || layout.canvas.isEmpty())
        return {};
    ResampledPhoto shown;
    if (const auto place = photoPlace(layout, pixels); place && !photo.isNull())
        shown = resampledPhoto(photo, *place);
    paintItem(picture, layout, shown, picture.rect(), aboutToDraw);
    return picture;
}
