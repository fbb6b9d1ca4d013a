#include "platform/photo/AreaAverage.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace {

// The exact mean of `area` in floating point, partly covered pixels included.
QRgb meanOver(const QImage& image, const QRectF& area)
{
    double sums[4]{}, whole = 0;
    for (int y = int(area.top()); y < image.height() && y < area.bottom(); ++y) {
        for (int x = int(area.left()); x < image.width() && x < area.right(); ++x) {
            const QRectF covered = area & QRectF(x, y, 1, 1);
            const double weight = covered.width() * covered.height();
            const QRgb pixel = image.pixel(x, y);
            whole += weight;
            sums[0] += qRed(pixel) * weight;
            sums[1] += qGreen(pixel) * weight;
            sums[2] += qBlue(pixel) * weight;
            sums[3] += qAlpha(pixel) * weight;
        }
    }
    return qRgba(qRound(sums[0] / whole), qRound(sums[1] / whole), qRound(sums[2] / whole),
                 qRound(sums[3] / whole));
}

}    // namespace

TEST(AreaAverage, everyPixelIsTheMeanOfWhatItCovers)
{
    QRandomGenerator random(3);
    QImage image(23, 17, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, random.generate() | 0xFF000000);
    }
    for (const QSize size :
         {QSize(23, 17), QSize(7, 5), QSize(22, 16), QSize(1, 1), QSize(30, 4)}) {
        const QImage averaged = areaAveraged(image, size);
        ASSERT_EQ(averaged.size(), size);
        const double across = 23.0 / size.width(), down = 17.0 / size.height();
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                const QRgb expected = meanOver(image, QRectF(x * across, y * down, across, down));
                ASSERT_LE(std::abs(qRed(averaged.pixel(x, y)) - qRed(expected)), 1);
                ASSERT_LE(std::abs(qBlue(averaged.pixel(x, y)) - qBlue(expected)), 1);
                ASSERT_EQ(qAlpha(averaged.pixel(x, y)), 255);
            }
        }
    }
}

TEST(AreaAverage, aVeryLongWhiteLineStaysWhite)
{
    QImage line(9'000'000, 2, QImage::Format_ARGB32_Premultiplied);
    line.fill(Qt::white);
    EXPECT_EQ(areaAveraged(line, QSize(1280, 1)).pixel(700, 0), 0xFFFFFFFF);
}
