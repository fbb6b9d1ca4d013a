#include "canvas/BoxShadow.h"

#include <QPainter>

#include <gtest/gtest.h>

TEST(BoxShadow, blurIsAGaussianOfTheGivenDeviation)
{
    for (const double sigma : {2.0, 3.3, 14.0}) {
        // The Gaussian blur of a step edge is the error function.
        QImage step(400, 3, QImage::Format_Alpha8);
        for (int y = 0; y < 3; ++y)
            std::fill_n(step.scanLine(y) + 200, 200, uchar(255)),
                std::fill_n(step.scanLine(y), 200, uchar(0));
        // High enough that the upper and lower edges do not affect the blur of row 200.
        QImage column = step.scaled(400, 400);
        gaussianBlur(column, sigma);
        for (int x = 200 - int(3 * sigma); x < 200 + int(3 * sigma); ++x) {
            const double expected =
                127.5 * (1 + std::erf((x + 0.5 - 200) / (sigma * std::sqrt(2.0))));
            EXPECT_NEAR(column.constScanLine(200)[x], expected, 5)
                << "sigma " << sigma << " at " << x;
        }
    }
}

TEST(BoxShadow, aVeryWideBlurLooksLikeAWideOne)
{
    const auto atEdge = [](double sigma) {
        const ShadowPicture shadow =
            boxShadow({300, -9000, 9000, 18000}, 0, sigma, Qt::black, {0, 0, 600, 200});
        return qAlpha(shadow.image.pixel(QPoint(300 - int(sigma), 100) - shadow.position));
    };
    // Samples one standard deviation outside a straight edge, where a Gaussian blur leaves 15.87 %.
    EXPECT_NEAR(atEdge(59), 255 * 0.1587, 3);
    EXPECT_NEAR(atEdge(121), 255 * 0.1587, 3);
    EXPECT_NEAR(atEdge(250), 255 * 0.1587, 3);
}

TEST(BoxShadow, theBoxItselfIsNotCutOutAndTheColourKeepsItsOpacity)
{
    const ShadowPicture shadow =
        boxShadow({40, 40, 120, 80}, 8, 5, QColor(255, 0, 0, 128), {0, 0, 200, 200});
    const QRgb middle = shadow.image.pixel(QPoint(100, 80) - shadow.position);
    EXPECT_NEAR(qAlpha(middle), 128, 1);
    EXPECT_EQ(qGreen(middle), 0);
    const QRgb edge = shadow.image.pixel(QPoint(40, 80) - shadow.position);
    EXPECT_NEAR(qAlpha(edge), 64, 8) << "half of it at the edge of the box";
}

// boxShadow() blurs a shortened box and repeats its middle. The result must equal a blur of the
// whole box.
TEST(BoxShadow, aWideBoxIsAsBlurredWhole)
{
    for (const double sigma : {0.4, 3.0, 14.0}) {
        for (const double radius : {0.0, 22.5}) {
            const QRectF box(80.3, 90.7, 311.6, 203.1);
            QImage whole(480, 400, QImage::Format_Alpha8);
            whole.fill(0);
            QPainter painter(&whole);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(Qt::NoPen);
            painter.setBrush(Qt::black);
            painter.drawRoundedRect(box, radius, radius);
            painter.end();
            gaussianBlur(whole, sigma);
            const ShadowPicture shadow = boxShadow(box, radius, sigma, Qt::black, whole.rect());
            int worst = 0;
            for (int y = 0; y < shadow.image.height(); ++y) {
                for (int x = 0; x < shadow.image.width(); ++x)
                    worst = std::max(
                        worst, std::abs(qAlpha(shadow.image.pixel(x, y)) -
                                        whole.constScanLine(
                                            y + shadow.position.y())[x + shadow.position.x()]));
            }
            EXPECT_LE(worst, 1) << sigma << " " << radius;
        }
    }
}

TEST(BoxShadow, aBoxBeyondAnySizeCostsOnlyWhatShows)
{
    const QRect visible(0, 0, 300, 300);
    const ShadowPicture vast = boxShadow({-1e5, -1e5, 2e5, 2e5}, 10, 20, Qt::black, visible);
    EXPECT_EQ(vast.image.size(), visible.size());
    EXPECT_EQ(qAlpha(vast.image.pixel(150, 150)), 255);
    EXPECT_TRUE(boxShadow({1000, 1000, 50, 50}, 10, 5, Qt::black, visible).image.isNull());
}
