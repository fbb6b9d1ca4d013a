#include "model/PublicationItem.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

PublicationItem freshItem()
{
    return PublicationItem::make(QUrl::fromLocalFile(u"/fotos/foto.final.jpg"_s), {});
}

}    // namespace

TEST(PublicationItem, startsWithFourLayersOfWhichTheTaglineWaitsHidden)
{
    const PublicationItem item = freshItem();
    ASSERT_EQ(item.layers.size(), 4);
    for (int i = 0; i < 4; ++i) {
        const TextLayer& layer = item.layers[i];
        EXPECT_EQ(layer.slot, CopySlot(i));
        EXPECT_EQ(layer.text, GeneratedCopy::placeholder().text(layer.slot));
        EXPECT_EQ(layer.isVisible, layer.slot != CopySlot::tagline);
        EXPECT_NEAR(layer.frame.x * 2 + layer.frame.width, 1, 1e-12) << "not centred";
        const bool isCall = layer.slot == CopySlot::callToAction;
        EXPECT_EQ(layer.backgroundOpacity, isCall ? 0.36 : 0.18);
        EXPECT_EQ(layer.cornerRadius, isCall ? 24.0 : 16.0);
    }
    EXPECT_EQ(item.placement, ImagePlacement());
    EXPECT_NE(item.id, freshItem().id);
}

TEST(PublicationItem, filenameLosesItsLastExtensionOnly)
{
    EXPECT_EQ(freshItem().filename(), u"foto.final"_s);
    PublicationItem item;
    item.url = QUrl::fromLocalFile(u"/fotos/sin extension"_s);
    EXPECT_EQ(item.filename(), u"sin extension"_s);
    item.url = QUrl::fromLocalFile(u"/fotos/100% ñ#1.jpg"_s);
    EXPECT_EQ(item.filename(), u"100% ñ#1"_s);
}

// Undo compares items to find out whether an edit changed anything, so the smallest step of a
// slider must make two items different.
TEST(PublicationItem, equalitySeesTheSmallestChangeOfAnyField)
{
    const PublicationItem item = freshItem();
    const auto changed = [&](auto change) {
        PublicationItem copy = item;
        change(copy);
        return !(copy == item);
    };
    EXPECT_FALSE(changed([](PublicationItem&) {}));
    EXPECT_TRUE(changed([](PublicationItem& i) { i.layers[0].frame.x += 1e-14; }));
    EXPECT_TRUE(changed([](PublicationItem& i) { i.layers[0].shadowRadius += 1e-12; }));
    EXPECT_TRUE(changed([](PublicationItem& i) { i.layers[0].foreground.red -= 1e-12; }));
    EXPECT_TRUE(changed([](PublicationItem& i) { i.placement.offset.y += 1e-15; }));
    EXPECT_TRUE(changed([](PublicationItem& i) { i.shapeLayers.append(ShapeLayer()); }));
    EXPECT_TRUE(changed([](PublicationItem& i) { i.paidRenderFingerprints.insert(u"x"_s); }));
    EXPECT_TRUE(changed([](PublicationItem& i) { i.analysis.imageNotes.clear(); }));
    EXPECT_TRUE(changed([](PublicationItem& i) { i.image.digest = "other"; }));
}

TEST(Layers, aStyleMovesBetweenLayersWithoutPlaceOrText)
{
    PublicationItem item = freshItem();
    TextLayer& title = item.layers[0];
    title.fontScale = 2;
    title.alignment = LayerTextAlignment::trailing;
    TextLayer target = item.layers[3];
    const TextLayer before = target;
    TextLayerDesign(title).apply(target);
    EXPECT_EQ(TextLayerDesign(target), TextLayerDesign(title));
    EXPECT_EQ(target.frame, before.frame);
    EXPECT_EQ(target.text, before.text);
    EXPECT_EQ(target.alignment, before.alignment);
    EXPECT_EQ(target.id, before.id);

    const QUuid kept = QUuid::createUuid();
    TextLayer expected = title;
    expected.id = kept;
    EXPECT_EQ(TextLayer::preservingID(kept, title), expected);
}

TEST(Layers, onlyALineStartsWithAStrokeAndOnlyARectangleWithCorners)
{
    for (const ShapeKind kind : allCases<ShapeKind>()) {
        const ShapeLayer shape(QUuid::createUuid(), kind, {});
        EXPECT_EQ(shape.strokeWidth, kind == ShapeKind::line ? 4.0 : 0.0);
        EXPECT_EQ(shape.cornerRadius, kind == ShapeKind::rectangle ? 18.0 : 0.0);
    }
}
