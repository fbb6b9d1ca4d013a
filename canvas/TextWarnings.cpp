#include "canvas/TextWarnings.h"

#include "canvas/SafeZone.h"

#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr double leastOfText = 4.5, leastOfLargeText = 3;
// Design units. With a design unit taken as a CSS pixel, these are 18 and 14 points, the sizes from
// which WCAG 2 counts regular and bold type as large.
constexpr double largeType = 24, largeBoldType = 19;
// The share of a text's pixels, those with the worst contrast, that is ignored. On the texts of
// tools/contrast_labels.json, ignoring a tenth gives too many warnings, and ignoring three tenths
// misses whole words.
constexpr double overlookedShare = 0.2;

double linear(double component)
{
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

const std::array<float, 256>& linearBytes()
{
    static const std::array<float, 256> table = [] {
        std::array<float, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = float(linear(double(i) / 255));
        return values;
    }();
    return table;
}

// Relative luminance of WCAG 2, 0..1.
float luminance(QRgb pixel)
{
    const auto& light = linearBytes();
    return 0.2126F * light[std::size_t(qRed(pixel))] + 0.7152F * light[std::size_t(qGreen(pixel))] +
           0.0722F * light[std::size_t(qBlue(pixel))];
}

float ratio(float one, float other)
{
    return (std::max(one, other) + 0.05F) / (std::min(one, other) + 0.05F);
}

// The colour that results when `pen`, with its opacity, is painted over an opaque pixel.
QRgb over(QRgb pen, QRgb ground)
{
    const int opacity = qAlpha(pen);
    const auto mix = [opacity](int above, int below) {
        return (above * opacity + below * (255 - opacity) + 127) / 255;
    };
    return qRgb(mix(qRed(pen), qRed(ground)), mix(qGreen(pen), qGreen(ground)),
                mix(qBlue(pen), qBlue(ground)));
}

bool isBlank(const QString& text)
{
    return std::ranges::all_of(text, [](QChar c) { return c.isSpace(); });
}

bool isStory(QSize canvas)
{
    return std::abs(canvas.width() / double(canvas.height()) -
                    row(SocialFormat::storyReel).aspectRatio) < 0.01;
}

bool isOutsideSafeZone(const LaidOutTextLayer& layer, QSize canvas)
{
    if (!isStory(canvas))
        return false;
    const QRectF used = layer.text.usedRect().translated(layer.textPosition);
    return used.top() < safeZoneTop * canvas.height() ||
           used.bottom() > (1 - safeZoneBottom) * canvas.height();
}

}    // namespace

double leastContrast(const LaidOutText& text, double designScale)
{
    const double size = text.fontSize() / designScale;
    return size >= largeType || (size >= largeBoldType && text.isBold()) ? leastOfLargeText
                                                                         : leastOfText;
}

std::optional<double> textContrast(const LaidOutTextLayer& layer, const QImage& picture,
                                   double scale)
{
    const QRgb pen = layer.foreground.rgba();
    std::vector<float> ratios;
    for (const QRectF& band : layer.text.letterBands()) {
        const QRectF place = QTransform::fromScale(scale, scale)
                                 .mapRect(band.translated(layer.textPosition))
                                 .intersected(picture.rect());
        const QRect pixels = place.toAlignedRect();
        for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
            const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
            for (int x = pixels.left(); x <= pixels.right(); ++x)
                ratios.push_back(ratio(luminance(over(pen, row[x])), luminance(row[x])));
        }
    }
    if (ratios.empty())
        return std::nullopt;
    const auto judged = ratios.begin() + qptrdiff(double(ratios.size() - 1) * overlookedShare);
    std::ranges::nth_element(ratios, judged);
    return double(*judged);
}

JudgedPicture judgedItem(const ItemLayout& layout, QSize pixels, const QImage& photo)
{
    const bool hasGround = layout.photoRect.isEmpty() || !photo.isNull();
    const double scale = pictureScale(layout, pixels);
    QHash<const LaidOutTextLayer*, double> contrasts;
    JudgedPicture judged;
    judged.picture = paintedItem(layout, pixels, photo,
                                 [&](const LaidOutTextLayer& layer, const QImage& picture) {
                                     if (!hasGround || isBlank(layer.source.text))
                                         return;
                                     if (const auto contrast = textContrast(layer, picture, scale))
                                         contrasts.insert(&layer, *contrast);
                                 });
    for (const LaidOutTextLayer& layer : layout.texts) {
        if (isBlank(layer.source.text))
            continue;
        TextWarning warning{.layer = layer.source.id,
                            .slot = layer.source.slot,
                            .overflows = layer.overflows,
                            .lacksGlyphs = layer.text.lacksGlyphs(),
                            .contrast = std::nullopt,
                            .leastContrast = leastContrast(layer.text, layout.scale),
                            .isOutsideSafeZone = isOutsideSafeZone(layer, layout.canvas)};
        const auto contrast = contrasts.constFind(&layer);
        if (contrast != contrasts.cend() && *contrast < warning.leastContrast)
            warning.contrast = std::floor(*contrast * 10) / 10;
        if (warning.overflows || warning.lacksGlyphs || warning.contrast ||
            warning.isOutsideSafeZone)
            judged.warnings.append(warning);
    }
    return judged;
}
