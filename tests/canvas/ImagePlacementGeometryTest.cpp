#include "canvas/ImagePlacementGeometry.h"

#include <gtest/gtest.h>

using namespace ImagePlacementGeometry;

TEST(ImagePlacementGeometry, placesThePhotoAsItsModeSays)
{
    struct Case {
        const char* what;
        QSizeF photo;
        ImagePlacement placement;
        QRectF expected;
    };
    using enum ImageFitMode;
    const QSizeF canvas(400, 400);
    const Case cases[] = {
        {"fill covers and is centred", {200, 100}, {fill, 1, {}}, {-200, 0, 800, 400}},
        {"fit is whole and centred", {200, 100}, {fit, 1, {}}, {0, 100, 400, 200}},
        {"a pan stops where the photo's edge meets the canvas's",
         {200, 100},
         {fill, 1, {0.9, 0}},
         {0, 0, 800, 400}},
        {"a pan within the overhang is kept",
         {200, 100},
         {fill, 1, {-0.25, 0}},
         {-300, 0, 800, 400}},
        {"an axis without overhang cannot be panned",
         {200, 100},
         {fill, 1, {0, 0.3}},
         {-200, 0, 800, 400}},
        {"fit ignores any pan at zoom 1", {200, 100}, {fit, 1, {0.4, 0.4}}, {0, 100, 400, 200}},
        {"a zoomed fit can be panned where it overhangs",
         {200, 100},
         {fit, 1.5, {0.5, 0.5}},
         {0, 50, 600, 300}},
        {"zoom 0 does not collapse the photo", {2000, 1000}, {fill, 0, {}}, {100, 150, 200, 100}},
        {"an empty photo is nowhere", {0, 100}, {fill, 1, {}}, {}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(imageRect(c.photo, canvas, c.placement), c.expected) << c.what;
    EXPECT_EQ(imageRect({10, 10}, {0, 5}, {}), QRectF());
}

TEST(ImagePlacementGeometry, aClampedPlacementAsksForNoMoreThanItGets)
{
    const ImagePlacement wild{ImageFitMode::fill, 2, {3, -3}};
    const QSizeF photo(300, 200), canvas(540, 675);
    const ImagePlacement settled = clamped(wild, photo, canvas);
    EXPECT_EQ(imageRect(photo, canvas, settled), imageRect(photo, canvas, wild));
    EXPECT_LT(std::abs(settled.offset.x), 3);
    EXPECT_EQ(settled.zoom, 2);
    EXPECT_EQ(settled.mode, ImageFitMode::fill);

    const ImagePlacement whole{ImageFitMode::fit, 1, {0.3, 0.3}};
    EXPECT_NEAR(clamped(whole, photo, canvas).offset.x, 0, 1e-12);
    EXPECT_NEAR(clamped(whole, photo, canvas).offset.y, 0, 1e-12);
}
