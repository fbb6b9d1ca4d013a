#include "studio/batch/BatchSelection.h"
#include "studio/batch/LayerEdits.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace BatchSelection;

namespace {

Batch batchOf(int count)
{
    PublicationItems items;
    for (int i = 0; i < count; ++i)
        items.append(PublicationItem::make(QUrl::fromLocalFile(u"/f/%1.jpg"_s.arg(i)), {}));
    Batch batch;
    replaceItems(batch, items);
    return batch;
}

// The positions of the selected items, of the current item and of the anchor: "1 2 3, at 3, from
// 1".
QString described(const Batch& batch)
{
    QStringList positions;
    for (const int index : selectedIndicesForBatch(batch))
        positions.append(QString::number(index));
    return u"%1, at %2, from %3"_s.arg(positions.join(u' '))
        .arg(batch.selectedIndex)
        .arg(batch.selectionAnchorIndex);
}

void expectSound(const Batch& batch)
{
    for (const QUuid& id : batch.selectedItemIDs)
        EXPECT_TRUE(
            std::ranges::any_of(batch.items, [&](const auto& item) { return item.id == id; }));
    if (batch.items.isEmpty()) {
        EXPECT_EQ(batch.selectedIndex, 0);
        EXPECT_TRUE(batch.selectedItemIDs.isEmpty() && batch.selectedLayerID.isNull());
    } else {
        ASSERT_TRUE(batch.currentItem());
        EXPECT_TRUE(batch.currentItem()->hasLayer(batch.selectedLayerID));
    }
}

}    // namespace

TEST(BatchSelection, clicksSelectAsTheirKeysSay)
{
    Batch batch = batchOf(6);
    struct Click {
        int index;
        Qt::KeyboardModifier key;
        const char* expected;
    };
    const Click clicks[] = {
        {2, Qt::NoModifier, "2, at 2, from 2"},
        {4, Qt::ShiftModifier, "2 3 4, at 4, from 2"},
        {0, Qt::ShiftModifier, "0 1 2, at 0, from 2"},
        {5, Qt::ControlModifier, "0 1 2 5, at 5, from 5"},
        {1, Qt::ControlModifier, "0 2 5, at 1, from 1"},
        {3, Qt::ShiftModifier, "1 2 3, at 3, from 1"},
        {9, Qt::NoModifier, "1 2 3, at 3, from 1"},
        {-1, Qt::ControlModifier, "1 2 3, at 3, from 1"},
        {4, Qt::NoModifier, "4, at 4, from 4"},
        {4, Qt::ControlModifier, "4, at 4, from 4"},
    };
    for (const Click& click : clicks) {
        selectItem(batch, click.index, click.key);
        EXPECT_EQ(described(batch), QString::fromLatin1(click.expected));
        expectSound(batch);
    }
    selectAll(batch);
    EXPECT_EQ(described(batch), u"0 1 2 3 4 5, at 4, from 4"_s);
}

TEST(BatchSelection, removalKeepsTheCurrentImageInPlaceAndSomethingSelected)
{
    Batch batch = batchOf(4);
    selectSingleIndex(batch, 3);
    removeItem(batch, batch.items[1].id);
    EXPECT_EQ(described(batch), u"2, at 2, from 2"_s) << "one before the current one";
    removeItem(batch, batch.currentItem()->id);
    EXPECT_EQ(described(batch), u"1, at 1, from 1"_s) << "the last one";
    selectSingleIndex(batch, 0);
    removeItem(batch, QUuid::createUuid());
    EXPECT_EQ(batch.items.size(), 2) << "a stranger";
    removeItem(batch, batch.items[0].id);
    removeItem(batch, batch.items[0].id);
    EXPECT_TRUE(batch.items.isEmpty());
    expectSound(batch);
}

TEST(BatchSelection, theSelectedLayerIsKeptOnlyWhereTheImageHasIt)
{
    Batch batch = batchOf(2);
    LayerEdits::addShape(batch, ShapeKind::circle);
    const QUuid shape = batch.selectedLayerID;
    selectItem(batch, 1, Qt::ControlModifier);
    EXPECT_EQ(batch.selectedLayerID, batch.items[1].layers[0].id);
    batch.items.edit(0).shapeLayers[0].id = shape;
    batch.items.edit(1).shapeLayers = batch.items[0].shapeLayers;
    batch.selectedLayerID = shape;
    selectSingleIndex(batch, 0);
    EXPECT_EQ(batch.selectedLayerID, shape);
}

TEST(LayerEdits, aStyleReachesTheOtherSelectedImagesWithoutTheText)
{
    Batch batch = batchOf(4);
    selectItem(batch, 2, Qt::ShiftModifier);
    selectItem(batch, 0, Qt::NoModifier);
    selectItem(batch, 2, Qt::ShiftModifier);    // selects 0 to 2; item 2 is current
    TextLayer title = batch.items[2].layers[0];
    title.fontScale = 1.4;
    title.alignment = LayerTextAlignment::trailing;
    title.text = u"Solo aquí"_s;
    title.frame = {0, 0, 1, 1};
    title.isVisible = false;

    using enum LayerEdits::Copied;
    const Batch before = batch;
    LayerEdits::applyLayerChangeToSelectedItems(batch, title, style);
    TextLayer expected = before.items[0].layers[0];
    expected.fontScale = 1.4;
    expected.alignment = LayerTextAlignment::trailing;
    EXPECT_EQ(batch.items[0].layers[0], expected);
    EXPECT_EQ(batch.items[1].layers[0].fontScale, 1.4);
    EXPECT_EQ(batch.items[2], before.items[2])
        << "the edited image itself is written by its editor";
    EXPECT_EQ(batch.items[3], before.items[3]) << "not selected";

    title.fontScale = 3;
    LayerEdits::applyLayerChangeToSelectedItems(batch, title, visibility);
    expected.isVisible = false;
    EXPECT_EQ(batch.items[0].layers[0], expected) << "the eye";
    LayerEdits::applyLayerChangeToSelectedItems(batch, title, frame);
    expected.frame = title.frame;
    EXPECT_EQ(batch.items[0].layers[0], expected);
}

TEST(LayerEdits, aSingleSelectedImageIsNotReachedFromAnother)
{
    Batch batch = batchOf(2);
    selectItem(batch, 1, Qt::ControlModifier);
    selectItem(batch, 1, Qt::ControlModifier);
    ASSERT_EQ(described(batch), u"0, at 1, from 1"_s);
    TextLayer title = batch.items[1].layers[0];
    title.fontScale = 2;
    const Batch before = batch;
    LayerEdits::applyLayerChangeToSelectedItems(batch, title, LayerEdits::Copied::style);
    EXPECT_EQ(batch, before);
}

TEST(LayerEdits, aGestureSendsTheFrameThatItMovedAndAPanelTheStyle)
{
    Batch batch = batchOf(2);
    selectAll(batch);
    LayerEdits::addShape(batch, ShapeKind::rectangle);
    batch.items.edit(0).shapeLayers[0].frame = {0.5, 0.5, 0.1, 0.1};
    batch.items.edit(0).layers[0].frame = {0, 0, 0.2, 0.2};
    batch.items.edit(0).layers[1].frame = {0.3, 0.3, 0.2, 0.2};
    batch.items.edit(1).layers[0].fontScale = 2;
    batch.items.edit(1).shapeLayers[0].strokeWidth = 9;
    const Batch before = batch;
    const auto other = [&]() -> const PublicationItem& { return batch.items[1]; };

    PublicationItem expected = before.items[1];
    LayerEdits::syncCurrentCanvasEditsToSelectedItems(batch, batch.items[0].layers[0].id);
    expected.layers[0].frame = {0, 0, 0.2, 0.2};
    EXPECT_EQ(other(), expected) << "its own size stays";
    LayerEdits::syncCurrentCanvasEditsToSelectedItems(batch, batch.items[0].shapeLayers[0].id);
    expected.shapeLayers[0].frame = {0.5, 0.5, 0.1, 0.1};
    EXPECT_EQ(other(), expected);

    batch.items.edit(1).shapeLayers[0].frame = expected.shapeLayers[0].frame = {0.7, 0, 0.2, 0.2};
    ShapeLayer edited = batch.items[0].shapeLayers[0];
    edited.kind = ShapeKind::circle;
    LayerEdits::editShape(batch, edited);
    expected.shapeLayers[0].kind = ShapeKind::circle;
    expected.shapeLayers[0].strokeWidth = edited.strokeWidth;
    EXPECT_EQ(other(), expected) << "its own place stays";
}

TEST(LayerEdits, aShapeIsAddedAndDeletedUnderOneIdInAllSelectedImages)
{
    Batch batch = batchOf(3);
    selectItem(batch, 1, Qt::ShiftModifier);
    LayerEdits::addShape(batch, ShapeKind::triangle);
    EXPECT_EQ(batch.items[0].shapeLayers, batch.items[1].shapeLayers);
    EXPECT_EQ(batch.items[1].shapeLayers.size(), 1);
    EXPECT_TRUE(batch.items[2].shapeLayers.isEmpty());

    LayerEdits::deleteSelectedLayer(batch);
    EXPECT_TRUE(batch.items[0].shapeLayers.isEmpty() && batch.items[1].shapeLayers.isEmpty());
    expectSound(batch);

    // With the shapes gone, a text is selected. Deleting it hides it, but never removes it.
    LayerEdits::deleteSelectedLayer(batch);
    EXPECT_EQ(batch.items[1].layers.size(), 4);
    EXPECT_FALSE(batch.items[1].layers[0].isVisible);
    EXPECT_FALSE(batch.items[0].layers[0].isVisible);
    EXPECT_TRUE(batch.items[2].layers[0].isVisible);
}

TEST(LayerEdits, anEmptyBatchTakesEveryCommand)
{
    Batch batch;
    LayerEdits::addShape(batch, ShapeKind::line);
    LayerEdits::deleteSelectedLayer(batch);
    LayerEdits::syncCurrentCanvasEditsToSelectedItems(batch, QUuid::createUuid());
    selectAll(batch);
    selectItem(batch, 0, Qt::ControlModifier);
    EXPECT_EQ(batch, Batch());
    EXPECT_TRUE(selectedIndicesForBatch(batch).isEmpty());
}
