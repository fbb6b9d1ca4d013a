#include "canvas/PhotoResampler.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace {

QImage noise(QSize size, QImage::Format format)
{
    QRandomGenerator random(3);
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, random.generate());
    }
    return image.convertToFormat(format);
}

// Resamples one pixel with the kernel in doubles, in both directions at once.
QRgb reference(const QImage& source, QSize target, QPoint at)
{
    const auto kernel = [](double x) {
        x = std::abs(x);
        return x < 1 ? (1.5 * x - 2.5) * x * x + 1 : x < 2 ? ((-0.5 * x + 2.5) * x - 4) * x + 2 : 0;
    };
    const double rx = double(source.width()) / target.width(),
                 ry = double(source.height()) / target.height();
    const double wx = std::max(rx, 1.0), wy = std::max(ry, 1.0);
    const double cx = (at.x() + 0.5) * rx - 0.5, cy = (at.y() + 0.5) * ry - 0.5;
    double sum[4] = {}, total = 0;
    for (int y = int(std::ceil(cy - 2 * wy)); y <= cy + 2 * wy; ++y) {
        for (int x = int(std::ceil(cx - 2 * wx)); x <= cx + 2 * wx; ++x) {
            const double weight = kernel((x - cx) / wx) * kernel((y - cy) / wy);
            const QRgb pixel = source.pixel(std::clamp(x, 0, source.width() - 1),
                                            std::clamp(y, 0, source.height() - 1));
            sum[0] += weight * qRed(pixel);
            sum[1] += weight * qGreen(pixel);
            sum[2] += weight * qBlue(pixel);
            total += weight;
        }
    }
    const auto byte = [&](int c) { return std::clamp(int(std::lround(sum[c] / total)), 0, 255); };
    return qRgb(byte(0), byte(1), byte(2));
}

}    // namespace

TEST(PhotoResampler, agreesWithTheKernelInDoubles)
{
    const QImage photo = noise({61, 47}, QImage::Format_RGB32);
    for (const QSize target : {QSize(40, 31), QSize(61, 47), QSize(150, 90), QSize(7, 60)}) {
        const QImage result = resampled(photo, target, QRect(QPoint(), target));
        ASSERT_EQ(result.size(), target);
        int worst = 0;
        for (int y = 0; y < target.height(); ++y) {
            for (int x = 0; x < target.width(); ++x) {
                const QRgb a = result.pixel(x, y), b = reference(photo, target, {x, y});
                worst = std::max({worst, std::abs(qRed(a) - qRed(b)),
                                  std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
            }
        }
        // resampled() works in two passes; between them it rounds to bytes and cuts off overshoot.
        EXPECT_LE(worst, target == photo.size() ? 0 : 24) << target.width();
    }
}

TEST(PhotoResampler, aWindowShowsThePixelsOfTheWhole)
{
    const QImage photo = noise({61, 47}, QImage::Format_RGB32);
    const QSize target(97, 75);
    const QImage whole = resampled(photo, target, QRect(QPoint(), target));
    for (const QRect window :
         {QRect(0, 0, 1, 1), QRect(13, 20, 31, 17), QRect(96, 74, 1, 1), QRect(50, 0, 90, 90)})
        EXPECT_EQ(resampled(photo, target, window), whole.copy(window.intersected(whole.rect())));
    EXPECT_TRUE(resampled(photo, target, QRect(97, 0, 5, 5)).isNull());
    EXPECT_TRUE(resampled(QImage(), target, QRect(0, 0, 5, 5)).isNull());
}

TEST(PhotoResampler, flatColourStaysExactAndTransparencyStaysPremultiplied)
{
    QImage flat(33, 21, QImage::Format_RGB32);
    flat.fill(QColor(10, 200, 255));
    const QImage wide = resampled(flat, QSize(101, 9), {0, 0, 101, 9});
    for (int x = 0; x < 101; ++x)
        EXPECT_EQ(wide.pixel(x, 4), qRgb(10, 200, 255));

    const QImage soft =
        resampled(noise({40, 40}, QImage::Format_ARGB32), QSize(29, 53), {0, 0, 29, 53});
    ASSERT_EQ(soft.format(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < soft.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(soft.constScanLine(y));
        for (int x = 0; x < soft.width(); ++x)
            EXPECT_LE(std::max({qRed(row[x]), qGreen(row[x]), qBlue(row[x])}), qAlpha(row[x]));
    }
}

// Resampling a whole panorama at full zoom would take hundreds of megabytes.
TEST(PhotoResampler, anEnormousTargetCostsOnlyItsWindow)
{
    const QImage photo = noise({500, 4}, QImage::Format_RGB32);
    const QImage part = resampled(photo, QSize(50'000'000, 400'000), {24'999'000, 200'000, 64, 64});
    EXPECT_EQ(part.size(), QSize(64, 64));
}
