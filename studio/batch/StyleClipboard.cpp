#include "studio/batch/StyleClipboard.h"

#include "studio/batch/LayerEdits.h"

#include <algorithm>

namespace {

template <typename Layer>
const Layer* findLayer(const QList<Layer>& layers, QUuid id)
{
    const auto found = std::ranges::find(layers, id, &Layer::id);
    return found == layers.end() ? nullptr : &*found;
}

const TextLayer* selectedText(const Batch& batch)
{
    const PublicationItem* item = batch.currentItem();
    return item ? findLayer(item->layers, batch.selectedLayerID) : nullptr;
}

const ShapeLayer* selectedShape(const Batch& batch)
{
    const PublicationItem* item = batch.currentItem();
    return item ? findLayer(item->shapeLayers, batch.selectedLayerID) : nullptr;
}

}    // namespace

QString StyleClipboard::copyFrom(const PublicationItem& item, const Batch& batch)
{
    if (const TextLayer* selected = selectedText(batch)) {
        const auto same = std::ranges::find(item.layers, selected->slot, &TextLayer::slot);
        if (same == item.layers.end())
            return {};
        m_style = *same;
        return row(same->slot).displayName.toString();
    }
    const ShapeLayer* shape = findLayer(item.shapeLayers, batch.selectedLayerID);
    if (!shape)
        return {};
    m_style = *shape;
    return rawValue(shape->kind);
}

bool StyleClipboard::fits(const Batch& batch) const
{
    return (selectedText(batch) && std::holds_alternative<TextLayer>(m_style)) ||
           (selectedShape(batch) && std::holds_alternative<ShapeLayer>(m_style));
}

void StyleClipboard::pasteInto(Batch& batch) const
{
    if (!fits(batch))
        return;
    if (const TextLayer* text = selectedText(batch)) {
        const auto& copied = std::get<TextLayer>(m_style);
        TextLayer changed = *text;
        TextLayerDesign(copied).apply(changed);
        changed.alignment = copied.alignment;
        LayerEdits::editLayer(batch, changed, {});
        return;
    }
    ShapeLayer changed = *selectedShape(batch);
    const ShapeKind kind = changed.kind;
    ShapeLayerDesign(std::get<ShapeLayer>(m_style)).apply(changed);
    changed.kind = kind;    // pasting a style must not turn a line into a circle
    LayerEdits::editShape(batch, changed);
}
