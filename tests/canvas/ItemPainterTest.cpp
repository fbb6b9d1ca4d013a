#include "canvas/ItemPainter.h"
#include "canvas/BoxShadow.h"
#include "canvas/ExportCanvasRenderer.h"
#include "canvas/PngEncoder.h"

#include <QPainter>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QSizeF paintedCanvas(200, 200);

// An item without photo, texts and shapes, for a test to fill. White layers are visible on its
// black background.
PublicationItem emptyItem()
{
    PublicationItem item = PublicationItem::make(QUrl(), {});
    item.layers.clear();
    return item;
}

TextLayer whiteBox(CodableRect frame)
{
    TextLayer layer(QUuid::createUuid(), CopySlot::title, {}, true, frame);
    layer.background = codableWhite;
    layer.backgroundOpacity = 1;
    layer.cornerRadius = 0;
    layer.shadowOpacity = 0;
    return layer;
}

ShapeLayer whiteShape(ShapeKind kind, CodableRect frame)
{
    ShapeLayer shape(QUuid::createUuid(), kind, frame);
    shape.fill = codableWhite;
    shape.cornerRadius = 0;
    return shape;
}

QImage rendered(const PublicationItem& item, QSizeF size = paintedCanvas,
                QSizeF reference = paintedCanvas)
{
    return ExportCanvasRenderer::bitmap(item, size, reference).value_or(QImage());
}

int grey(const QImage& image, int x, int y)
{
    return qGray(image.pixel(x, y));
}

}    // namespace

TEST(ItemPainter, shapesHaveTheirOutlines)
{
    PublicationItem item = emptyItem();
    const CodableRect frame(0.25, 0.25, 0.5, 0.5);
    struct Case {
        ShapeKind kind;
        int corner, middle, topMiddle, bottomLeft;
    };
    const Case cases[] = {{ShapeKind::rectangle, 255, 255, 255, 255},
                          {ShapeKind::circle, 0, 255, 255, 0},
                          {ShapeKind::triangle, 0, 255, -1, 255},
                          {ShapeKind::line, 0, 0, 0, 0}};
    for (const Case& c : cases) {
        item.shapeLayers = {whiteShape(c.kind, frame)};
        item.shapeLayers[0].strokeWidth = 0;
        const QImage image = rendered(item);
        EXPECT_EQ(grey(image, 52, 52), c.corner) << int(c.kind);
        EXPECT_EQ(grey(image, 100, 100), c.middle) << int(c.kind);
        if (c.topMiddle >= 0) {
            EXPECT_EQ(grey(image, 100, 52), c.topMiddle) << int(c.kind);
        }
        EXPECT_EQ(grey(image, 53, 148), c.bottomLeft) << int(c.kind);
        EXPECT_EQ(grey(image, 45, 100), 0);
    }
}

TEST(ItemPainter, aLineIsItsStrokeAndAStrokeBelowATenthIsNone)
{
    PublicationItem item = emptyItem();
    item.shapeLayers = {whiteShape(ShapeKind::line, {0.1, 0.4, 0.8, 0.2})};
    item.shapeLayers[0].strokeOpacity = 1;
    EXPECT_EQ(grey(rendered(item), 100, 100), 255);
    EXPECT_EQ(grey(rendered(item), 100, 103), 0) << "four wide";
    EXPECT_EQ(grey(rendered(item, paintedCanvas, paintedCanvas / 2), 100, 103), 255)
        << "scaled with the design";
    item.shapeLayers[0].strokeWidth = 0.1;
    EXPECT_EQ(grey(rendered(item), 100, 100), 0);
}

// The stroke reaches as far as the points of its mitred corners.
TEST(ItemPainter, sharpCornersOfAThickTriangleKeepTheirPoints)
{
    PublicationItem item = emptyItem();
    item.shapeLayers = {whiteShape(ShapeKind::triangle, {0.45, 0.4, 0.1, 0.5})};
    item.shapeLayers[0].fillOpacity = 0;
    item.shapeLayers[0].strokeOpacity = 1;
    item.shapeLayers[0].strokeWidth = 10;
    const ItemLayout layout = layOut(item, paintedCanvas, paintedCanvas);
    // The triangle is 20 wide and 100 high. The tip of its stroke is above the apex by half the
    // stroke width over the sine of half the apex angle.
    const double point = 80 - 5 / std::sin(std::atan2(10, 100));
    const QImage image = rendered(item);
    EXPECT_GT(grey(image, 100, int(point) + 4), 50);
    EXPECT_EQ(grey(image, 100, int(point) - 2), 0);
    EXPECT_LT(extentOf(layout.shapes[0]).top(), point);
    item.shapeLayers[0].frame = {0.2, 0.2, 0.6, 0.6};
    EXPECT_EQ(layOut(item, paintedCanvas, paintedCanvas).shapes[0].miterLimit, plainMiterLimit);
}

// A box with a radius beyond half its shorter side is a pill, and so is its shadow.
TEST(ItemPainter, aRadiusIsAtMostHalfTheShorterSide)
{
    for (const CodableRect& frame :
         {CodableRect(0.1, 0.3, 0.8, 0.2), CodableRect(0.3, 0.1, 0.2, 0.8)}) {
        PublicationItem pill = emptyItem();
        pill.layers = {whiteBox(frame)};
        pill.layers[0].shadowOpacity = 1;
        pill.layers[0].shadowColor = {1, 0, 0, 1};
        pill.shapeLayers = {whiteShape(ShapeKind::rectangle, frame)};
        pill.layers[0].cornerRadius = pill.shapeLayers[0].cornerRadius = 20;
        PublicationItem rounder = pill;
        rounder.layers[0].cornerRadius = rounder.shapeLayers[0].cornerRadius = 80;
        EXPECT_EQ(rendered(rounder), rendered(pill));
        const LaidOutTextLayer box = layOut(rounder, paintedCanvas, paintedCanvas).texts[0];
        QImage whole(200, 200, QImage::Format_Alpha8);
        whole.fill(0);
        QPainter painter(&whole);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(box.box, 20, 20);
        painter.end();
        gaussianBlur(whole, box.shadow->sigma);
        const ShadowPicture shadow =
            boxShadow(box.box, box.cornerRadius, box.shadow->sigma, Qt::black, whole.rect());
        for (int y = 0; y < shadow.image.height(); ++y) {
            for (int x = 0; x < shadow.image.width(); ++x) {
                const QPoint at = QPoint(x, y) + shadow.position;
                ASSERT_NEAR(qAlpha(shadow.image.pixel(x, y)), whole.constScanLine(at.y())[at.x()],
                            1)
                    << x << " " << y;
            }
        }
    }
}

// A photo one pixel wide becomes millions of times as high as the canvas when fitted to its width.
TEST(ItemPainter, aPhotoAsThinAsOneMayBeIsDrawn)
{
    PublicationItem item = emptyItem();
    item.image.size = {1, 60'000'000};
    item.placement.zoom = 3;
    QImage photo(1, 64, QImage::Format_RGB32);
    for (int y = 0; y < 64; ++y)
        photo.setPixel(0, y, qRgb(4 * y, 0, 0));
    const auto image = ExportCanvasRenderer::bitmap(
        item, {1080, 1080}, {540, 540}, [&](const PhotoHandle&, PhotoLevel) { return photo; });
    ASSERT_TRUE(image);
    EXPECT_NEAR(qRed(image->pixel(540, 540)), 126, 2) << "its middle";
    EXPECT_EQ(image->pixel(0, 0), image->pixel(1079, 1079));
}

TEST(ItemPainter, opacityOfAFillReplacesThatOfItsColour)
{
    PublicationItem item = emptyItem();
    item.shapeLayers = {whiteShape(ShapeKind::rectangle, {0, 0, 1, 1})};
    item.shapeLayers[0].fill.alpha = 0.1;
    item.shapeLayers[0].fillOpacity = 0.5;
    EXPECT_NEAR(grey(rendered(item), 100, 100), 128, 1);
}

TEST(ItemPainter, textsLieAboveShapesAndHiddenOnesLeaveNoTrace)
{
    PublicationItem item = emptyItem();
    item.layers = {whiteBox({0.2, 0.2, 0.6, 0.6})};
    ShapeLayer black = whiteShape(ShapeKind::rectangle, {0, 0, 1, 1});
    black.fill = codableBlack;
    item.shapeLayers = {black};
    EXPECT_EQ(grey(rendered(item), 100, 100), 255);
    item.layers[0].isVisible = false;
    item.layers[0].shadowOpacity = 1;
    item.layers[0].shadowColor = codableWhite;
    const QImage image = rendered(item);
    EXPECT_EQ(image, rendered(emptyItem()));
}

TEST(ItemPainter, aBoxWithAShadowIsFilledTwice)
{
    PublicationItem item = emptyItem();
    item.layers = {whiteBox({0.2, 0.2, 0.6, 0.6})};
    TextLayer& layer = item.layers[0];
    layer.backgroundOpacity = 0.5;
    layer.shadowColor = codableBlack;
    layer.shadowDistance = 0;
    EXPECT_NEAR(grey(rendered(item), 100, 100), 128, 1);
    layer.shadowOpacity = 1;
    EXPECT_NEAR(grey(rendered(item), 100, 100), 191, 1);
    layer.shadowRadius = 0.001;
    EXPECT_NEAR(grey(rendered(item), 100, 100), 128, 1) << "no blur, no shadow";
    layer.shadowRadius = 14;
    layer.hasBox = false;
    EXPECT_EQ(rendered(item), rendered(emptyItem())) << "no box, no shadow";
}

TEST(ItemPainter, aPositiveAngleLiftsTheShadowAndItsOpacityIsTheProduct)
{
    PublicationItem item = emptyItem();
    item.layers = {whiteBox({0.4, 0.4, 0.2, 0.2})};
    TextLayer& layer = item.layers[0];
    layer.background = codableBlack;
    layer.backgroundOpacity = 0.5;
    layer.shadowColor = codableWhite;
    layer.shadowOpacity = 0.5;
    layer.shadowDistance = 60;
    layer.shadowRadius = 4;
    layer.shadowAngle = 90;
    EXPECT_NEAR(grey(rendered(item), 100, 40), 64, 2) << "above";
    EXPECT_EQ(grey(rendered(item), 100, 160), 0);
    layer.shadowAngle = 0;
    EXPECT_NEAR(grey(rendered(item), 160, 100), 64, 2) << "to the right";
}

TEST(ItemPainter, textKeepsOffTheEdgesEvenWithoutABox)
{
    PublicationItem item = emptyItem();
    TextLayer layer = whiteBox({0, 0, 1, 1});
    layer.hasBox = false;
    layer.text = u"MMMMMMMM MMMMMMMM MMMMMMMM MMMMMMMM MMMMMMMM MMMMMMMM MMMMMMMM MMMMMMMM"_s;
    layer.alignment = LayerTextAlignment::leading;
    layer.fontScale = 2.5;
    item.layers = {layer};
    const QImage image = rendered(item);
    int ink = 0, inMargin = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            ink += grey(image, x, y) > 100;
            inMargin += grey(image, x, y) > 100 && x < 10;
        }
    }
    EXPECT_GT(ink, 500);
    EXPECT_EQ(inMargin, 0);
}

TEST(ItemPainter, thePhotoIsDrawnAtWholePixelsAndBlackSurroundsAFittedOne)
{
    PublicationItem item = emptyItem();
    item.image = PhotoHandle{.path = {}, .size = {100, 51}, .reducible = false, .digest = {}};
    item.placement.mode = ImageFitMode::fit;
    QImage photo(100, 51, QImage::Format_RGB32);
    photo.fill(Qt::white);
    const auto source = [&](const PhotoHandle&, PhotoLevel) { return photo; };
    const QImage image = *ExportCanvasRenderer::bitmap(item, paintedCanvas, paintedCanvas, source);
    for (int y = 0; y < 200; ++y)
        EXPECT_EQ(grey(image, 100, y), y >= 49 && y < 151 ? 255 : 0) << y;

    QImage clear(100, 51, QImage::Format_ARGB32_Premultiplied);
    clear.fill(Qt::transparent);
    photo = clear;
    EXPECT_EQ(*ExportCanvasRenderer::bitmap(item, paintedCanvas, paintedCanvas, source),
              rendered(emptyItem()));
    photo = QImage();
    EXPECT_EQ(ExportCanvasRenderer::bitmap(item, paintedCanvas, paintedCanvas, source),
              std::nullopt)
        << "a photo that cannot be decoded is no render";
}

TEST(ExportCanvasRenderer, outputSizesAreRoundedAndRunsAreEqual)
{
    const PublicationItem item = PublicationItem::make(QUrl(), {});
    EXPECT_EQ(rendered(item, {1080.5, 1350.4}, {540, 675}).size(), QSize(1081, 1350));
    const auto png = ExportCanvasRenderer::pngData(item, SocialFormat::square, {540, 540});
    ASSERT_TRUE(png);
    EXPECT_EQ(png, ExportCanvasRenderer::pngData(item, SocialFormat::square, {540, 540}));
    EXPECT_EQ(QImage::fromData(*png).size(), QSize(1080, 1080));
}

TEST(ExportCanvasRenderer, theLevelDependsOnWhatIsDrawn)
{
    const PhotoHandle jpeg{.path = {}, .size = {6000, 4000}, .reducible = true, .digest = {}};
    const auto level = [](const PhotoHandle& photo, double zoom, QSizeF canvasSize, double shown) {
        return ExportCanvasRenderer::photoLevel(photo, {ImageFitMode::fill, zoom, {}}, canvasSize,
                                                shown);
    };
    EXPECT_EQ(level(jpeg, 1, {1080, 1350}, 1), PhotoLevel::half);
    EXPECT_EQ(level(jpeg, 1, {1500, 1000}, 1), PhotoLevel::quarter);
    EXPECT_EQ(level(jpeg, 1, {1501, 1000}, 1), PhotoLevel::half);
    EXPECT_EQ(level(jpeg, 1, {1080, 1350}, 0.1), PhotoLevel::eighth);
    EXPECT_EQ(level(jpeg, 1e300, {1080, 1350}, 1), PhotoLevel::full);
    PhotoHandle png = jpeg;
    png.reducible = false;
    EXPECT_EQ(level(png, 1, {1080, 1350}, 0.1), PhotoLevel::full);
}

// A tile shows the layout of the export at another scale: no text may break or shrink differently.
TEST(ItemPainter, aTileShowsTheExportMadeSmaller)
{
    const PublicationItem item = PublicationItem::make(QUrl(), {});
    const ItemLayout layout = layOut(item, {1080, 1350}, {540, 675});
    const QImage whole = paintedItem(layout, {1080, 1350}, {});
    const QImage tile = paintedItem(layout, {216, 270}, {});
    const QImage reduced = whole.scaled(216, 270, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    qint64 difference = 0;
    for (int y = 0; y < 270; ++y) {
        for (int x = 0; x < 216; ++x)
            difference += std::abs(grey(tile, x, y) - grey(reduced, x, y));
    }
    EXPECT_LT(double(difference) / (216 * 270), 2.0);
}

TEST(ItemPainter, aTextIsDrawnWholeInABoxTooNarrowForIt)
{
    PublicationItem item = emptyItem();
    TextLayer layer = whiteBox({0.5, 0.2, 0.05, 0.4});
    layer.hasBox = false;
    layer.text = u"HOLA"_s;
    item.layers = {layer};
    const QImage image = rendered(item);
    int ink = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x)
            ink += grey(image, x, y) > 100;
    }
    EXPECT_GT(ink, 20);
}

TEST(ItemPainter, noSizeLeavesABlackLineAtAnEdge)
{
    PublicationItem item = emptyItem();
    item.image = PhotoHandle{.path = {}, .size = {160, 200}, .reducible = false, .digest = {}};
    QImage photo(160, 200, QImage::Format_RGB32);
    photo.fill(Qt::white);
    const ItemLayout layout = layOut(item, {1080, 1350}, {540, 675});
    for (int width = 400; width < 440; ++width) {
        const QSize size(width, qRound(width * 1.25) + width % 2);
        EXPECT_EQ(grey(paintedItem(layout, size, photo), size.width() - 1, size.height() - 1), 255)
            << width;
    }
}

TEST(ItemPainter, hostileNumbersNeitherCrashNorHang)
{
    PublicationItem item = PublicationItem::make(QUrl(), {});
    item.image = PhotoHandle{.path = {}, .size = {100, 50}, .reducible = false, .digest = {}};
    const double wild[] = {1e308, -1e308, 1e9, -1e9, 1e-308, 0, std::nan(""), INFINITY};
    QImage photo(100, 50, QImage::Format_RGB32);
    photo.fill(Qt::red);
    for (const double value : wild) {
        for (TextLayer& layer : item.layers) {
            layer.frame = {value, -value, value, value};
            layer.cornerRadius = layer.shadowRadius = layer.shadowDistance = layer.shadowAngle =
                value;
            layer.fontScale = layer.shadowOpacity = layer.backgroundOpacity = value;
            layer.text = u"palabra "_s.repeated(3000);
        }
        item.shapeLayers.clear();
        for (const ShapeKind kind : allCases<ShapeKind>()) {
            item.shapeLayers.append(whiteShape(kind, {value, value, value, -value}));
            item.shapeLayers.last().strokeWidth = item.shapeLayers.last().cornerRadius = value;
        }
        item.placement = {ImageFitMode::fill, value, {value, -value}};
        const auto image =
            ExportCanvasRenderer::bitmap(item, paintedCanvas, paintedCanvas,
                                         [&](const PhotoHandle&, PhotoLevel) { return photo; });
        EXPECT_TRUE(image) << value;
    }
}
