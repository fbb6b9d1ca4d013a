#include "studio/batch/LayerEdits.h"

#include "studio/batch/BatchSelection.h"

#include <algorithm>

namespace {

template <typename Layer>
Layer* find(QList<Layer>& layers, QUuid id)
{
    const auto found = std::ranges::find(layers, id, &Layer::id);
    return found == layers.end() ? nullptr : &*found;
}

// A frame in the middle of the canvas, in fractions of the canvas size. Circles and triangles get
// one that is square in pixels.
CodableRect newShapeFrame(ShapeKind kind, SocialFormat format)
{
    double width = 0.4, height = 0.2;
    if (kind == ShapeKind::line) {
        width = 0.5;
        height = 0.05;
    } else if (kind != ShapeKind::rectangle) {
        const double aspect = row(format).aspectRatio;
        width = aspect < 1 ? 0.4 : 0.4 / aspect;
        height = width * aspect;
    }
    return {(1 - width) / 2, (1 - height) / 2, width, height};
}

void hideSlotInSelectedItems(Batch& batch, CopySlot slot)
{
    for (const int index : BatchSelection::otherSelectedIndices(batch)) {
        if (TextLayer* other = batch.items.edit(index).layer(slot))
            other->isVisible = false;
    }
}

}    // namespace

void LayerEdits::applyLayerChangeToSelectedItems(Batch& batch, const TextLayer& layer,
                                                 Copied copied)
{
    for (const int index : BatchSelection::otherSelectedIndices(batch)) {
        TextLayer* target = batch.items.edit(index).layer(layer.slot);
        if (!target)
            continue;
        switch (copied) {
        case Copied::style:
            TextLayerDesign(layer).apply(*target);
            target->alignment = layer.alignment;
            break;
        case Copied::visibility:
            target->isVisible = layer.isVisible;
            break;
        case Copied::frame:
            target->frame = layer.frame;
            break;
        }
    }
}

void LayerEdits::applyShapeChangeToSelectedItems(Batch& batch, const ShapeLayer& shape,
                                                 Copied copied)
{
    for (const int index : BatchSelection::otherSelectedIndices(batch)) {
        ShapeLayer* target = find(batch.items.edit(index).shapeLayers, shape.id);
        if (target && copied == Copied::style)
            ShapeLayerDesign(shape).apply(*target);
        else if (target && copied == Copied::frame)
            target->frame = shape.frame;
    }
}

void LayerEdits::editLayer(Batch& batch, const TextLayer& layer, Copied copied)
{
    if (!batch.currentItem())
        return;
    if (TextLayer* target = find(batch.items.edit(batch.selectedIndex).layers, layer.id)) {
        *target = layer;
        applyLayerChangeToSelectedItems(batch, layer, copied);
    }
}

void LayerEdits::editShape(Batch& batch, const ShapeLayer& shape)
{
    if (!batch.currentItem())
        return;
    if (ShapeLayer* target = find(batch.items.edit(batch.selectedIndex).shapeLayers, shape.id)) {
        *target = shape;
        applyShapeChangeToSelectedItems(batch, shape, Copied::style);
    }
}

void LayerEdits::replaceCurrentItem(Batch& batch, const PublicationItem& item)
{
    if (!batch.currentItem() || batch.currentItem()->id != item.id)
        return;
    PublicationItem& current = batch.items.edit(batch.selectedIndex);
    const QSet<QString> paid = current.paidRenderFingerprints;
    current = item;
    current.paidRenderFingerprints = paid;    // an edit never changes payments
    BatchSelection::keepInvariants(batch, BatchSelection::LayerRule::anyOrNone);
}

void LayerEdits::commitCanvasItem(Batch& batch, const PublicationItem& item)
{
    if (!batch.currentItem() || batch.currentItem()->id != item.id)
        return;
    const PublicationItem before = *batch.currentItem();
    for (const ShapeLayer& shape : before.shapeLayers) {
        if (!item.hasLayer(shape.id))
            deleteShape(batch, shape.id);
    }
    for (const TextLayer& layer : item.layers) {
        const auto known = std::ranges::find(before.layers, layer.id, &TextLayer::id);
        if (known != before.layers.end() && known->isVisible && !layer.isVisible)
            hideSlotInSelectedItems(batch, layer.slot);
    }
    replaceCurrentItem(batch, item);
}

void LayerEdits::syncCurrentCanvasEditsToSelectedItems(Batch& batch, QUuid movedLayer)
{
    if (!batch.currentItem())
        return;
    PublicationItem current = *batch.currentItem();
    if (const TextLayer* text = find(current.layers, movedLayer))
        applyLayerChangeToSelectedItems(batch, *text, Copied::frame);
    else if (const ShapeLayer* shape = find(current.shapeLayers, movedLayer))
        applyShapeChangeToSelectedItems(batch, *shape, Copied::frame);
}

void LayerEdits::changeSelectedFrame(Batch& batch, const FrameChange& change)
{
    if (!batch.currentItem())
        return;
    PublicationItem& current = batch.items.edit(batch.selectedIndex);
    if (TextLayer* text = find(current.layers, batch.selectedLayerID)) {
        text->frame = change(text->frame, SmallestFrame());
    } else if (ShapeLayer* shape = find(current.shapeLayers, batch.selectedLayerID)) {
        shape->frame = change(shape->frame, smallestFrameOf(shape->kind));
    }
    syncCurrentCanvasEditsToSelectedItems(batch, batch.selectedLayerID);
}

void LayerEdits::addShape(Batch& batch, ShapeKind kind)
{
    if (!batch.currentItem())
        return;
    const ShapeLayer shape(QUuid::createUuid(), kind, newShapeFrame(kind, batch.format));
    batch.items.edit(batch.selectedIndex).shapeLayers.append(shape);
    for (const int index : BatchSelection::otherSelectedIndices(batch))
        batch.items.edit(index).shapeLayers.append(shape);
    batch.selectedLayerID = shape.id;
}

void LayerEdits::deleteSelectedLayer(Batch& batch)
{
    if (!batch.currentItem())
        return;
    PublicationItem& current = batch.items.edit(batch.selectedIndex);
    if (TextLayer* text = find(current.layers, batch.selectedLayerID)) {
        text->isVisible = false;
        hideSlotInSelectedItems(batch, text->slot);
    } else {
        deleteShape(batch, batch.selectedLayerID);
    }
}

void LayerEdits::deleteShape(Batch& batch, QUuid shape)
{
    if (!batch.currentItem() || !batch.currentItem()->hasLayer(shape))
        return;
    QList<int> indices = BatchSelection::otherSelectedIndices(batch);
    indices.append(batch.selectedIndex);
    for (const int index : std::as_const(indices)) {
        batch.items.edit(index).shapeLayers.removeIf(
            [shape](const ShapeLayer& candidate) { return candidate.id == shape; });
    }
    BatchSelection::keepInvariants(batch, BatchSelection::LayerRule::anyOrNone);
}
