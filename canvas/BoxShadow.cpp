#include "canvas/BoxShadow.h"

#include "canvas/PhotoResampler.h"

#include <QCache>
#include <QMutex>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>
#include <vector>

namespace {

constexpr int blurPasses = 3;
// Sigma in device pixels. From this value on, all of the visible blur is drawn; from twice the
// value on, it is drawn at a reduced size.
constexpr double widestFullBlur = 60;
constexpr double widestEnd = 1000;    // device pixels; largest `end` for foldOf()
constexpr qsizetype cacheBytes = 24 << 20;

// A box filter: 2·radius + 1 samples of weight `full`, and one more of weight `end` on either side.
// The variances of blurPasses such filters add up to sigma².
struct FractionalBox {
    int radius;
    float full, end;

    explicit FractionalBox(double sigma)
    {
        const double variance = sigma * sigma / blurPasses;
        radius = int((std::sqrt(12 * variance + 1) - 1) / 2);
        const double r = radius;
        // This formula is from P. Gwosdek et al., "Theoretical foundations of Gaussian convolution
        // by extended box filtering".
        const double ends =
            (2 * r + 1) * (r * (r + 1) - 3 * variance) / (6 * (variance - (r + 1) * (r + 1)));
        const double length = 2 * r + 1 + 2 * ends;
        full = float(1 / length);
        end = float(ends / length);
    }
};

void blurLine(const float* in, float* out, int count, const FractionalBox& box)
{
    const auto at = [&](int i) { return i >= 0 && i < count ? in[i] : 0.0f; };
    double sum = 0;
    for (int i = -box.radius; i <= box.radius; ++i)
        sum += at(i);
    for (int i = 0; i < count; ++i) {
        out[i] =
            float(sum) * box.full + (at(i - box.radius - 1) + at(i + box.radius + 1)) * box.end;
        sum += at(i + box.radius + 1) - at(i - box.radius);
    }
}

// Blurs the rows of `in` and returns them as columns, so that two calls blur in both directions.
std::vector<float> blurRowsTransposed(const std::vector<float>& in, int width, int height,
                                      const FractionalBox& box)
{
    std::vector<float> out(in.size());
    std::vector<float> line(static_cast<std::size_t>(width)), other(line.size());
    for (int y = 0; y < height; ++y) {
        std::copy_n(in.begin() + qptrdiff(y) * width, width, line.begin());
        for (int pass = 0; pass < blurPasses; ++pass) {
            blurLine(line.data(), other.data(), width, box);
            line.swap(other);
        }
        for (int x = 0; x < width; ++x)
            out[std::size_t(x) * std::size_t(height) + std::size_t(y)] = line[std::size_t(x)];
    }
    return out;
}

// The samples left out of the middle of a blurred box's row or column, where all samples are equal.
struct Fold {
    int at = 0;      // index of the sample that is repeated for those left out
    int left = 0;    // number of samples left out after `at`

    int folded(int i) const { return i <= at ? i : std::max(at, i - left); }
};

// `length`: of the box. `margin`: samples that the blur adds at each end. `end`: number of samples
// from an end of the box inwards to where all samples are equal.
Fold foldOf(double length, int margin, int end)
{
    const double even = length - 2.0 * end;
    return even > 2 ? Fold{margin + end, int(even) - 1} : Fold{};
}

QImage tinted(const QImage& alpha, const QRect& part, const QColor& color, const Fold& across = {},
              const Fold& down = {})
{
    std::array<QRgb, 256> shades;
    for (int a = 0; a < 256; ++a)
        shades[std::size_t(a)] = qPremultiply(
            qRgba(color.red(), color.green(), color.blue(), qRound(a * color.alphaF())));
    QImage image(part.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < part.height(); ++y) {
        const uchar* from = alpha.constScanLine(down.folded(part.y() + y));
        auto* to = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < part.width(); ++x)
            to[x] = shades[from[across.folded(part.x() + x)]];
    }
    return image;
}

// Draws the opacity of a blurred box. `size` and the box are in device pixels; the returned image
// is smaller by the factor `reduction`.
QImage blurredBox(const QRectF& box, double cornerRadius, double sigma, QSize size, int reduction)
{
    QImage alpha((size + QSize(reduction - 1, reduction - 1)) / reduction, QImage::Format_Alpha8);
    if (alpha.isNull())
        return {};
    alpha.fill(0);
    {
        QPainter painter(&alpha);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(1.0 / reduction, 1.0 / reduction);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(box, cornerRadius, cornerRadius);
    }
    gaussianBlur(alpha, sigma / reduction);
    return alpha;
}

ShadowPicture drawShadow(const QRectF& box, double cornerRadius, double sigma, const QColor& color,
                         const QRect& visible)
{
    const int margin = int(std::ceil(sigma * blurReach)) + 1;
    const QRect blurred = box.toAlignedRect().adjusted(-margin, -margin, margin, margin);
    const QRect shown = blurred.intersected(visible);
    if (shown.isEmpty())
        return {};
    // All pixels in the middle of a large box are equal: blurs a smaller box and repeats its
    // middle.
    if (const double end = cornerRadius + margin + 2;
        box.isValid() && sigma < widestFullBlur && end < widestEnd) {
        const Fold across = foldOf(box.width(), margin, int(std::ceil(end)));
        const Fold down = foldOf(box.height(), margin, int(std::ceil(end)));
        const QRectF shorter(box.topLeft(), box.size() - QSizeF(across.left, down.left));
        const QImage alpha = blurredBox(shorter.translated(-blurred.topLeft()), cornerRadius, sigma,
                                        blurred.size() - QSize(across.left, down.left), 1);
        if (alpha.isNull())
            return {};
        return {shown.topLeft(),
                tinted(alpha, shown.translated(-blurred.topLeft()), color, across, down)};
    }
    // Leaves out parts of the box further than `margin` from `shown`, because their blur does not
    // reach it.
    const QRect drawn = shown.adjusted(-margin, -margin, margin, margin).intersected(blurred);
    // Draws a wide blur at a reduced size, which takes no longer than a narrow blur. Nothing is
    // lost, because a wide blur has no fine detail.
    const int reduction = std::max(1, int(sigma / widestFullBlur));
    const QImage alpha =
        blurredBox(box.translated(-drawn.topLeft()), cornerRadius, sigma, drawn.size(), reduction);
    if (alpha.isNull())
        return {};
    const QRect part = shown.translated(-drawn.topLeft());
    if (reduction == 1)
        return {shown.topLeft(), tinted(alpha, part, color)};
    return {shown.topLeft(), resampled(tinted(alpha, alpha.rect(), color),
                                       PixelRect(alpha.size() * reduction), part)};
}

struct ShadowKey {
    double x, y, width, height, cornerRadius, sigma;
    QRgb color;
    float opacity;
    QRect visible;
    bool operator==(const ShadowKey&) const = default;
};

size_t qHash(const ShadowKey& key, size_t seed = 0)
{
    return qHashMulti(seed, key.x, key.y, key.width, key.height, key.cornerRadius, key.sigma,
                      key.color, key.opacity, key.visible.x(), key.visible.y(), key.visible.width(),
                      key.visible.height());
}

}    // namespace

void gaussianBlur(QImage& alpha, double sigma)
{
    Q_ASSERT(alpha.format() == QImage::Format_Alpha8);
    if (!(sigma > 0.01))
        return;
    const int width = alpha.width(), height = alpha.height();
    const FractionalBox box(sigma);
    std::vector<float> samples(std::size_t(width) * std::size_t(height));
    for (int y = 0; y < height; ++y) {
        const uchar* row = alpha.constScanLine(y);
        std::copy_n(row, width, samples.begin() + qptrdiff(y) * width);
    }
    samples = blurRowsTransposed(samples, width, height, box);
    samples = blurRowsTransposed(samples, height, width, box);
    for (int y = 0; y < height; ++y) {
        const float* from = samples.data() + std::size_t(y) * std::size_t(width);
        std::transform(from, from + width, alpha.scanLine(y), [](float sample) {
            return uchar(std::clamp(int(std::lround(sample)), 0, 255));
        });
    }
}

ShadowPicture boxShadow(const QRectF& box, double cornerRadius, double sigma, const QColor& color,
                        const QRect& visible)
{
    static QMutex mutex;
    static QCache<ShadowKey, ShadowPicture> known(cacheBytes);
    const ShadowKey key{box.x(), box.y(),     box.width(),    box.height(), cornerRadius,
                        sigma,   color.rgb(), color.alphaF(), visible};
    {
        const QMutexLocker lock(&mutex);
        if (const ShadowPicture* found = known.object(key))
            return *found;
    }
    // Draws without holding the lock. If two threads draw the same shadow at once, both get equal
    // pixels.
    ShadowPicture picture = drawShadow(box, cornerRadius, sigma, color, visible);
    const QMutexLocker lock(&mutex);
    known.insert(key, std::make_unique<ShadowPicture>(picture).release(),
                 std::max<qsizetype>(picture.image.sizeInBytes(), 256));
    return picture;
}
