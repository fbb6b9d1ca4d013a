#include "canvas/interaction/CanvasInteraction.h"

#include "canvas/ImagePlacementGeometry.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QSizeF shownCanvas(400, 500);

// An item with one text over a rectangle, and a line below both. The photo and the canvas have the
// same aspect ratio.
PublicationItem sampleItem()
{
    PublicationItem item = PublicationItem::make(
        QUrl(), {.path = {}, .size = {800, 1000}, .reducible = false, .digest = {}});
    const CodableRect frame(0.1, 0.1, 0.4, 0.2);
    item.layers = {TextLayer(QUuid::createUuid(), CopySlot::title, u"Hola"_s, true, frame)};
    item.shapeLayers = {ShapeLayer(QUuid::createUuid(), ShapeKind::rectangle, {0.1, 0.1, 0.6, 0.6}),
                        ShapeLayer(QUuid::createUuid(), ShapeKind::line, {0.1, 0.8, 0.4, 0.1})};
    return item;
}

// Records the callbacks of gestures in `log`.
struct Canvas : CanvasInteraction {
    explicit Canvas(const PublicationItem& shown = sampleItem())
    {
        setCanvasSize(shownCanvas);
        setItem(shown);
        onCommit = [this](const PublicationItem& edited) {
            log.append(u"commit"_s);
            committed = edited;
        };
        onSelect = [this](QUuid id) { log.append(id.isNull() ? u"deselect"_s : u"select"_s); };
        onEditingBegan = [this] { log.append(u"began"_s); };
        onEditingEnded = [this] {
            log.append(movedLayer().isNull() ? u"ended"_s : u"ended layer"_s);
        };
    }
    void dragBy(QPointF from, QPointF by, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        press(from);
        drag(from + by, modifiers);
    }
    QUuid text() const { return item()->layers[0].id; }
    QUuid shape(int index) const { return item()->shapeLayers[index].id; }

    QStringList log;
    std::optional<PublicationItem> committed;
};

void expectNear(const CodableRect& actual, const CodableRect& expected, const char* name)
{
    EXPECT_NEAR(actual.x, expected.x, 1e-9) << name;
    EXPECT_NEAR(actual.y, expected.y, 1e-9) << name;
    EXPECT_NEAR(actual.width, expected.width, 1e-9) << name;
    EXPECT_NEAR(actual.height, expected.height, 1e-9) << name;
}

}    // namespace

TEST(CanvasInteraction, aLayerStopsAndSnapsWhereItShould)
{
    enum Grip { body, handle };
    struct Case {
        const char* name;
        int layer;    // 0: the text; 1: the rectangle; 2: the line
        Grip grip;
        QPointF by;    // distance of the drag in logical pixels
        CodableRect expected;
        bool shift;
        SnapGuides guides = {};
    };
    const double ratio = 0.4 / 0.2;
    const Case cases[] = {
        {"moved freely", 0, body, {40, 50}, {0.2, 0.2, 0.4, 0.2}, false},
        {"far left", 0, body, {-4000, 0}, {-0.32, 0.1, 0.4, 0.2}, false},
        {"far right and down", 0, body, {4000, 4000}, {0.92, 0.92, 0.4, 0.2}, false},
        {"centre at 0.51", 0, body, {84, 0}, {0.3, 0.1, 0.4, 0.2}, false, {true, false}},
        {"centre at 0.52", 0, body, {88, 0}, {0.32, 0.1, 0.4, 0.2}, false},
        {"both centre lines", 0, body, {78, 152}, {0.3, 0.4, 0.4, 0.2}, false, {true, true}},
        {"a text made tiny", 0, handle, {-900, -900}, {0.1, 0.1, 0.16, 0.06}, false},
        {"a line made tiny", 2, handle, {-900, -900}, {0.1, 0.8, 0.08, 0.01}, false},
        {"past the far edge", 0, handle, {9000, 9000}, {0.1, 0.1, 1.82, 1.82}, false},
        {"in proportion", 0, handle, {80, 0}, {0.1, 0.1, 0.6, 0.6 / ratio}, true},
        {"in proportion to the limit", 1, handle, {9000, 0}, {0.1, 0.1, 1.82, 1.82}, true},
        {"a line never in proportion", 2, handle, {40, 0}, {0.1, 0.8, 0.5, 0.1}, true},
        {"resized to the centre",
         0,
         handle,
         {156, 0},
         {0.105, 0.1, 0.79, 0.2},
         false,
         {true, false}},
    };
    for (const Case& c : cases) {
        Canvas it;
        const QUuid id = c.layer == 0 ? it.text() : it.shape(c.layer - 1);
        const QRectF rect = *it.layerRect(id);
        it.setSelectedLayerID(id);
        it.dragBy(c.grip == body ? rect.center() : rect.bottomRight(), c.by,
                  c.shift ? Qt::ShiftModifier : Qt::NoModifier);
        EXPECT_EQ(it.activeSnapGuides(), c.guides) << c.name;
        it.release();
        EXPECT_EQ(it.activeSnapGuides(), SnapGuides()) << c.name;
        expectNear(c.layer == 0 ? it.committed->layers[0].frame
                                : it.committed->shapeLayers[c.layer - 1].frame,
                   c.expected, c.name);
    }
}

TEST(CanvasInteraction, aPressFindsHandlesThenTextsThenShapes)
{
    using Part = CanvasHit::Part;
    Canvas it;
    const QPointF both(60, 60), shapeOnly(200, 300), photo(390, 490), corner(280, 350);
    EXPECT_EQ(it.hitTest(both), (CanvasHit{Part::layer, it.text()}));
    EXPECT_EQ(it.hitTest(shapeOnly), (CanvasHit{Part::layer, it.shape(0)}));
    EXPECT_EQ(it.hitTest(photo), (CanvasHit{Part::photo, {}}));
    EXPECT_EQ(it.hitTest({-5, 60}), CanvasHit()) << "beside the canvas";

    it.setSelectedLayerID(it.shape(0));
    PublicationItem item = *it.item();
    item.layers[0].frame = {0.6, 0.6, 0.3, 0.3};
    it.setItem(item);
    EXPECT_EQ(it.hitTest(corner), (CanvasHit{Part::handle, it.shape(0)})) << "a text lies on it";
    item.layers[0].isVisible = false;
    item.shapeLayers[0].frame = {0.5, 0.5, 0.52, 0.1};
    it.setItem(item);
    EXPECT_EQ(it.hitTest({415, 305}), (CanvasHit{Part::handle, it.shape(0)})) << "outside";
    it.setSelectedLayerID(it.text());
    EXPECT_EQ(it.hitTest({360, 450}).part, Part::photo) << "a hidden text has no handle";
}

TEST(CanvasInteraction, aGestureTellsItsStepsInOrder)
{
    Canvas it;
    it.dragBy({60, 60}, {10, 0});
    it.drag({80, 60});
    EXPECT_EQ(it.log, QStringList{u"began"_s});
    it.release();
    it.release();
    EXPECT_EQ(it.log, (QStringList{u"began"_s, u"commit"_s, u"select"_s, u"ended layer"_s}));

    it.log.clear();
    it.press({390, 490});
    it.release();
    EXPECT_EQ(it.log, (QStringList{u"commit"_s, u"deselect"_s})) << "a click moves nothing";
    it.log.clear();
    it.dragBy({390, 490}, {10, 0});
    it.release();
    EXPECT_EQ(it.log, (QStringList{u"began"_s, u"commit"_s, u"deselect"_s, u"ended"_s}));
    it.log.clear();
    it.press({-20, 10});
    it.drag({50, 50});
    it.release();
    EXPECT_EQ(it.log, QStringList{u"deselect"_s}) << "no photo is panned from outside";
}

TEST(CanvasInteraction, aCancelledOrInterruptedDragLeavesNoEdit)
{
    const PublicationItem before = sampleItem();
    Canvas it(before);
    it.dragBy({60, 60}, {30, 30});
    it.cancel();
    EXPECT_EQ(it.item(), before);
    EXPECT_EQ(it.log, (QStringList{u"began"_s, u"commit"_s, u"ended"_s}));
    it.release();
    EXPECT_EQ(it.log.size(), 3);

    it.log.clear();
    it.dragBy({60, 60}, {30, 30});
    const PublicationItem edited = *it.item();
    it.setItem(before);
    EXPECT_EQ(it.item(), edited) << "the item it began with does not end a drag";
    PublicationItem other = before;
    other.layers.clear();
    it.setItem(other);
    it.drag({100, 100});
    it.release();
    EXPECT_EQ(it.item(), other);
    EXPECT_EQ(it.log, (QStringList{u"began"_s, u"ended"_s}));

    it.log.clear();
    it.setItem(before);
    it.onEditingBegan = [&] { it.setItem(std::nullopt); };
    it.dragBy({60, 60}, {30, 30});
    it.release();
    EXPECT_EQ(it.log, QStringList{u"ended"_s});
    EXPECT_FALSE(it.press({60, 60})) << "without an item";
}

TEST(CanvasInteraction, theWheelZoomsThePhotoWithinItsLimits)
{
    Canvas it;
    EXPECT_TRUE(it.scroll(10));
    EXPECT_NEAR(it.committed->placement.zoom, 1.1, 1e-9);
    it.scroll(1e6);
    EXPECT_EQ(it.committed->placement.zoom, 3);
    it.dragBy({390, 490}, {4000, 0});
    it.release();
    EXPECT_NEAR(it.committed->placement.offset.x, 1, 1e-9) << "the edge of the photo";
    it.scroll(-1e6);
    EXPECT_EQ(it.committed->placement.zoom, 1);
    it.dragBy({390, 490}, {-200, 100});
    it.release();
    EXPECT_EQ(it.committed->placement.offset, CanvasOffset()) << "it fits exactly";

    it.setSelectedLayerID(it.shape(1));
    it.log.clear();
    EXPECT_FALSE(it.scroll(10));
    EXPECT_TRUE(it.log.isEmpty());
}

// Only a pan that changes pixels of the export changes the placement, whatever size the canvas is
// shown at.
TEST(CanvasInteraction, aPanThatShowsNothingLeavesThePlacementAsItWas)
{
    QRandomGenerator random(3);
    const auto between = [&](double low, double high) {
        return low + (high - low) * random.generateDouble();
    };
    int seen = 0, unseen = 0;
    for (int i = 0; i < 200; ++i) {
        const SocialFormat format = SocialFormat(i % 4);
        const QSizeF exported = exportSize(format);
        PublicationItem item = sampleItem();
        item.layers.clear();
        item.shapeLayers.clear();
        item.image.size = QSize(int(between(100, 16000)), int(between(100, 16000)));
        item.placement = {
            ImageFitMode(random.bounded(2)), between(0.5, 3), {between(-1, 1), between(-1, 1)}};
        const auto pixels = [&](const ImagePlacement& placement) {
            return ImagePlacementGeometry::wholePixels(
                ImagePlacementGeometry::imageRect(item.image.size, exported, placement));
        };
        Canvas it(item);
        it.setFormat(format);
        const QSizeF view = exported * between(0.1, 2);
        it.setCanvasSize(view);
        const double reach = i % 5 == 0 ? 0.0002 : 0.5;    // as a fraction of the canvas
        const QPointF by(between(-reach, reach), i % 3 ? between(-reach, reach) : 0);
        it.dragBy({5, 5}, {by.x() * view.width(), by.y() * view.height()});
        it.release();
        ImagePlacement wanted = item.placement;
        wanted.offset.x += by.x();
        wanted.offset.y += by.y();
        const ImagePlacement& got = it.committed->placement;
        EXPECT_EQ(pixels(got), pixels(wanted)) << i;
        if (pixels(wanted) != pixels(item.placement)) {
            ++seen;
            EXPECT_LE(std::abs(got.offset.x), std::abs(wanted.offset.x) + 1e-9) << i;
        } else {
            ++unseen;
            EXPECT_EQ(got, item.placement) << i;
        }
    }
    EXPECT_GT(seen, 50);
    EXPECT_GT(unseen, 50);
}

TEST(CanvasInteraction, whereTheLimitsOfASizeCrossTheLargestCounts)
{
    PublicationItem item = sampleItem();
    item.layers[0].frame = {1.8, 0.1, 0.5, 0.2};
    Canvas it(item);
    it.setSelectedLayerID(it.text());
    it.dragBy(it.layerRect(it.text())->bottomRight(), {-8, 0});
    EXPECT_NEAR(it.item()->layers[0].frame.width, 1.92 - 1.8, 1e-9);
}

TEST(CanvasInteraction, textsAreHiddenAndShapesRemoved)
{
    Canvas it;
    it.hideSelectedLayer();
    EXPECT_TRUE(it.log.isEmpty()) << "nothing is selected";
    it.setSelectedLayerID(it.text());
    it.hideSelectedLayer();
    EXPECT_FALSE(it.committed->layers[0].isVisible);
    EXPECT_EQ(it.log, (QStringList{u"deselect"_s, u"commit"_s}));
    it.setSelectedLayerID(it.shape(0));
    it.hideSelectedLayer();
    EXPECT_EQ(it.committed->shapeLayers.size(), 1);
    EXPECT_EQ(it.committed->shapeLayers[0].kind, ShapeKind::line);
}

TEST(CanvasInteraction, hostileNumbersNeitherCrashNorSpread)
{
    for (const double value : {1e308, -1e308, std::nan(""), double(INFINITY), 0.0}) {
        PublicationItem item = sampleItem();
        item.layers[0].frame = {value, value, value, value};
        item.shapeLayers[0].frame = {value, 0.2, value, 0.3};
        item.placement = {ImageFitMode::fill, value, {value, value}};
        Canvas it(item);
        for (const QUuid id : {it.text(), it.shape(0), QUuid()}) {
            it.setSelectedLayerID(id);
            it.dragBy({60, 60}, {10, 10}, Qt::ShiftModifier);
            it.release();
            it.dragBy(it.layerRect(id).value_or(QRectF(0, 0, 9, 9)).bottomRight(), {5, 5});
            it.release();
        }
        it.setSelectedLayerID({});
        it.scroll(1);
        EXPECT_GE(it.item()->placement.zoom, 1) << value;
        EXPECT_LE(it.item()->placement.zoom, 3) << value;
    }
}
