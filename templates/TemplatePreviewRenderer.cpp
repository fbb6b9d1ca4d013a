#include "templates/TemplatePreviewRenderer.h"

#include <QBuffer>
#include <QImage>

#include <cmath>

namespace {

constexpr double webPQuality = 0.82, compactWidth = 360, compactQuality = 0.72;

std::optional<QByteArray> jpegOf(const QByteArray& png, double quality)
{
    const QImage image = QImage::fromData(png, "PNG");
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    const int percent = int(std::lround(ExportCanvasRenderer::clamp(quality, 0, 1) * 100));
    return image.save(&buffer, "JPEG", percent) ? std::optional(jpeg) : std::nullopt;
}

}    // namespace

QSizeF TemplatePreviewRenderer::previewSize(SocialFormat format, double width)
{
    return {width, width / row(format).aspectRatio};
}

std::optional<QByteArray> TemplatePreviewRenderer::pngData(const PublicationItem& item,
                                                           SocialFormat format,
                                                           std::optional<QSizeF> canvasSize,
                                                           const PhotoSource& source)
{
    const QSizeF size = canvasSize.value_or(previewSize(format));
    return ExportCanvasRenderer::pngData(item, size, size, source);
}

std::optional<QByteArray> TemplatePreviewRenderer::webPData(const PublicationItem& item,
                                                            SocialFormat format,
                                                            std::optional<QSizeF> canvasSize,
                                                            const PhotoSource& source)
{
    const QSizeF size = canvasSize.value_or(previewSize(format));
    return ExportCanvasRenderer::webPData(item, size, size, webPQuality, source);
}

std::optional<QByteArray> TemplatePreviewRenderer::jpegData(const PublicationItem& item,
                                                            SocialFormat format,
                                                            std::optional<QSizeF> canvasSize,
                                                            double quality,
                                                            const PhotoSource& source)
{
    const auto png = pngData(item, format, canvasSize, source);
    return png ? jpegOf(*png, quality) : std::nullopt;
}

std::optional<TemplatePreviewRenderer::Encoded>
TemplatePreviewRenderer::compactData(const PublicationItem& item, SocialFormat format,
                                     const PhotoSource& source)
{
    const QSizeF size = previewSize(format, compactWidth);
    if (const auto webP = webPData(item, format, size, source))
        return Encoded{*webP, true};
    if (const auto jpeg = jpegData(item, format, size, compactQuality, source))
        return Encoded{*jpeg, false};
    const auto png = pngData(item, format, size, source);
    return png ? std::optional(Encoded{*png, false}) : std::nullopt;
}
