#pragma once

#include "studio/batch/Batch.h"

#include <QList>
#include <Qt>

// Selects the items and the layer that commands act on. The functions change nothing but `batch`,
// and ignore indices outside of it.
namespace BatchSelection {

// Handles a click on an item: selects it alone; with Shift, selects the range from the anchor to
// it; with Ctrl (Command on macOS), toggles it. At least one item always stays selected.
void selectItem(Batch& batch, int index, Qt::KeyboardModifiers modifiers);
void selectSingleIndex(Batch& batch, int index);
// Makes an item current. If it is one of several selected items, they stay selected.
void goTo(Batch& batch, int index);
void selectAll(Batch& batch);

// Indices of the items that batch operations act on, in ascending order: the selected ones, or that
// of the current item if none is selected.
QList<int> selectedIndicesForBatch(const Batch& batch);
// Indices of the other items that an edit of the current one also changes: the other selected ones
// if several are selected, else none.
QList<int> otherSelectedIndices(const Batch& batch);

// Replaces all items. The first new item becomes the current one and is selected alone.
void replaceItems(Batch& batch, const PublicationItems& items);
// Removes an item. If it was the current one, the next item becomes current, or the new last item
// if there is no next one.
void removeItem(Batch& batch, QUuid id);

// Which selected layer of the current item keepInvariants() accepts. It replaces any other
// selection by the first text.
enum class LayerRule {
    any,
    anyOrNone,    // or no layer at all
    text,
};
// Restores the invariant of Batch after items were added or removed, another one became current, or
// the current one lost a layer.
void keepInvariants(Batch& batch, LayerRule rule = LayerRule::any);

}    // namespace BatchSelection
