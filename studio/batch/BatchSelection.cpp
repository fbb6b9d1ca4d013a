#include "studio/batch/BatchSelection.h"

#include <algorithm>

void BatchSelection::keepInvariants(Batch& batch, LayerRule rule)
{
    const int last = std::max(0, int(batch.items.size()) - 1);
    batch.selectedIndex = std::clamp(batch.selectedIndex, 0, last);
    batch.selectionAnchorIndex = std::clamp(batch.selectionAnchorIndex, 0, last);
    QSet<QUuid> selected;
    for (const PublicationItem& item : batch.items) {
        if (batch.selectedItemIDs.contains(item.id))
            selected.insert(item.id);
    }
    const PublicationItem* item = batch.currentItem();
    if (selected.isEmpty() && item)
        selected.insert(item->id);
    batch.selectedItemIDs = selected;

    const QUuid layer = batch.selectedLayerID;
    const bool isText =
        item && std::ranges::find(item->layers, layer, &TextLayer::id) != item->layers.end();
    const bool mayStay = rule == LayerRule::text ? isText : item && item->hasLayer(layer);
    const bool isNone = layer.isNull() && rule == LayerRule::anyOrNone;
    if (!mayStay && !isNone)
        batch.selectedLayerID = item && !item->layers.isEmpty() ? item->layers.first().id : QUuid();
}

void BatchSelection::selectItem(Batch& batch, int index, Qt::KeyboardModifiers modifiers)
{
    if (index < 0 || index >= batch.items.size())
        return;
    if (modifiers & Qt::ShiftModifier) {
        const auto [first, last] = std::minmax(batch.selectionAnchorIndex, index);
        batch.selectedItemIDs.clear();
        for (int i = first; i <= last; ++i)
            batch.selectedItemIDs.insert(batch.items[i].id);
        batch.selectedIndex = index;
    } else if (modifiers & Qt::ControlModifier) {
        const QUuid clicked = batch.items[index].id;
        if (!batch.selectedItemIDs.remove(clicked))
            batch.selectedItemIDs.insert(clicked);
        if (batch.selectedItemIDs.isEmpty())
            batch.selectedItemIDs.insert(batch.items[batch.selectedIndex].id);
        batch.selectedIndex = index;
        batch.selectionAnchorIndex = index;
    } else {
        selectSingleIndex(batch, index);
        return;
    }
    keepInvariants(batch);
}

void BatchSelection::selectSingleIndex(Batch& batch, int index)
{
    if (index < 0 || index >= batch.items.size())
        return;
    batch.selectedIndex = index;
    batch.selectedItemIDs = {batch.items[index].id};
    batch.selectionAnchorIndex = index;
    keepInvariants(batch);
}

void BatchSelection::goTo(Batch& batch, int index)
{
    if (index < 0 || index >= batch.items.size())
        return;
    if (!batch.selectedItemIDs.contains(batch.items[index].id))
        return selectSingleIndex(batch, index);
    batch.selectedIndex = index;
    keepInvariants(batch);
}

void BatchSelection::selectAll(Batch& batch)
{
    for (const PublicationItem& item : batch.items)
        batch.selectedItemIDs.insert(item.id);
}

QList<int> BatchSelection::selectedIndicesForBatch(const Batch& batch)
{
    QList<int> indices;
    for (int i = 0; i < batch.items.size(); ++i) {
        if (batch.selectedItemIDs.contains(batch.items[i].id))
            indices.append(i);
    }
    if (indices.isEmpty() && batch.currentItem())
        indices.append(batch.selectedIndex);
    return indices;
}

QList<int> BatchSelection::otherSelectedIndices(const Batch& batch)
{
    if (batch.selectedItemIDs.size() < 2)
        return {};    // even if the only selected item is not the current one
    QList<int> indices = selectedIndicesForBatch(batch);
    indices.removeOne(batch.selectedIndex);
    return indices;
}

void BatchSelection::replaceItems(Batch& batch, const PublicationItems& items)
{
    batch.items = items;
    batch.selectedIndex = 0;
    batch.selectionAnchorIndex = 0;
    batch.selectedItemIDs.clear();
    batch.selectedLayerID = QUuid();
    selectSingleIndex(batch, 0);
}

void BatchSelection::removeItem(Batch& batch, QUuid id)
{
    const auto found = std::ranges::find(batch.items, id, &PublicationItem::id);
    if (found == batch.items.end())
        return;
    const int index = int(found - batch.items.begin());
    batch.items.removeAt(index);
    const auto moved = [index](int kept) { return kept > index ? kept - 1 : kept; };
    batch.selectedIndex = moved(batch.selectedIndex);
    batch.selectionAnchorIndex = moved(batch.selectionAnchorIndex);
    keepInvariants(batch);
}
