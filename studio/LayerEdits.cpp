#include "studio/LayerEdits.h"

#include "studio/BatchSelection.h"

#include <algorithm>

namespace {

template <typename Layer>
Layer* find(QList<Layer>& layers, QUuid id)
{
    const auto found = std::ranges::find(layers, id, &Layer::id);
    return found == layers.end() ? nullptr : &*found;
}

// In the middle; a circle and a triangle as high as wide in the format's pixels.
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

}    // namespace

void LayerEdits::applyLayerChangeToSelectedItems(Batch& batch, const TextLayer& layer,
                                                 AlongFlags along)
{
    for (const int index : BatchSelection::otherSelectedIndices(batch)) {
        TextLayer* target = batch.items[index].layer(layer.slot);
        if (!target)
            continue;
        TextLayerDesign(layer).apply(*target);
        target->alignment = layer.alignment;
        if (along & Along::frame)
            target->frame = layer.frame;
        if (along & Along::visibility)
            target->isVisible = layer.isVisible;
    }
}

void LayerEdits::applyShapeChangeToSelectedItems(Batch& batch, const ShapeLayer& shape)
{
    for (const int index : BatchSelection::otherSelectedIndices(batch)) {
        if (ShapeLayer* target = find(batch.items[index].shapeLayers, shape.id))
            *target = shape;
    }
}

void LayerEdits::syncCurrentCanvasEditsToSelectedItems(Batch& batch, QUuid movedLayer)
{
    if (!batch.currentItem())
        return;
    PublicationItem current = *batch.currentItem();
    if (const TextLayer* text = find(current.layers, movedLayer))
        applyLayerChangeToSelectedItems(batch, *text, Along::frame);
    else if (const ShapeLayer* shape = find(current.shapeLayers, movedLayer))
        applyShapeChangeToSelectedItems(batch, *shape);
}

void LayerEdits::addShape(Batch& batch, ShapeKind kind)
{
    if (!batch.currentItem())
        return;
    const ShapeLayer shape(QUuid::createUuid(), kind, newShapeFrame(kind, batch.format));
    batch.items[batch.selectedIndex].shapeLayers.append(shape);
    for (const int index : BatchSelection::otherSelectedIndices(batch))
        batch.items[index].shapeLayers.append(shape);
    batch.selectedLayerID = shape.id;
}

void LayerEdits::deleteSelectedLayer(Batch& batch)
{
    if (!batch.currentItem())
        return;
    PublicationItem& current = batch.items[batch.selectedIndex];
    const QUuid id = batch.selectedLayerID;
    if (TextLayer* text = find(current.layers, id)) {
        text->isVisible = false;
        const CopySlot slot = text->slot;
        for (const int index : BatchSelection::otherSelectedIndices(batch)) {
            if (TextLayer* other = batch.items[index].layer(slot))
                other->isVisible = false;
        }
        return;
    }
    const auto remove = [id](PublicationItem& item) {
        item.shapeLayers.removeIf([id](const ShapeLayer& shape) { return shape.id == id; });
    };
    remove(current);
    for (const int index : BatchSelection::otherSelectedIndices(batch))
        remove(batch.items[index]);
    BatchSelection::settleSelectedLayer(batch);
}
