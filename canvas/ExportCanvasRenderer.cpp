#include "canvas/ExportCanvasRenderer.h"

#include "canvas/ImagePlacementGeometry.h"
#include "canvas/ItemLayout.h"
#include "canvas/ItemPainter.h"
#include "canvas/PngEncoder.h"
#include "canvas/WebPEncoder.h"

#include <cmath>

QImage ExportCanvasRenderer::decodedFromFile(const PhotoHandle& photo, PhotoLevel level)
{
    return decodePhoto(photo.path, level, photo.digest).value_or(QImage());
}

PhotoLevel ExportCanvasRenderer::photoLevel(const PhotoHandle& photo,
                                            const ImagePlacement& placement, QSizeF canvas,
                                            double shown)
{
    if (!photo.reducible)
        return PhotoLevel::full;
    const QRectF place = ImagePlacementGeometry::imageRect(photo.size, canvas, placement);
    // boundedTo() keeps huge sizes from overflowing int. The limit has no other effect: a photo
    // drawn enlarged is decoded at full size anyway.
    const QSizeF drawn = (place.size() * shown).boundedTo(QSizeF(photo.size));
    return coveringLevel(photo.size,
                         QSize(int(std::lround(drawn.width())), int(std::lround(drawn.height()))));
}

std::optional<QImage> ExportCanvasRenderer::bitmap(const PublicationItem& item, QSizeF outputSize,
                                                   QSizeF referenceCanvasSize,
                                                   const PhotoSource& source)
{
    const ItemLayout layout = layOut(item, outputSize, referenceCanvasSize);
    QImage photo;
    if (!layout.photoRect.isEmpty()) {
        photo = source(item.image, photoLevel(item.image, item.placement, outputSize));
        if (photo.isNull())
            return std::nullopt;
    }
    QImage image = paintedItem(layout, layout.canvas, photo);
    return image.isNull() ? std::nullopt : std::optional(std::move(image));
}

std::optional<QByteArray> ExportCanvasRenderer::pngData(const PublicationItem& item,
                                                        SocialFormat format,
                                                        QSizeF referenceCanvasSize,
                                                        const PhotoSource& source)
{
    return pngData(item, exportSize(format), referenceCanvasSize, source);
}

std::optional<QByteArray> ExportCanvasRenderer::pngData(const PublicationItem& item,
                                                        QSizeF outputSize,
                                                        QSizeF referenceCanvasSize,
                                                        const PhotoSource& source)
{
    const auto image = bitmap(item, outputSize, referenceCanvasSize, source);
    const QByteArray png = image ? encodePng(*image) : QByteArray();
    return png.isEmpty() ? std::nullopt : std::optional(png);
}

std::optional<QByteArray> ExportCanvasRenderer::webPData(const PublicationItem& item,
                                                         QSizeF outputSize,
                                                         QSizeF referenceCanvasSize, double quality,
                                                         const PhotoSource& source)
{
    const auto png = pngData(item, outputSize, referenceCanvasSize, source);
    return png ? WebPEncoder::convert(*png, quality) : std::nullopt;
}
