#pragma once

#include "studio/batch/Batch.h"

#include <QList>
#include <Qt>

// Which items and layers the commands act on. Pure operations on the value; indices outside the
// batch are ignored.
namespace BatchSelection {

// A click on an item selects it alone, with Shift a range from the anchor; with Ctrl (Command) it
// toggles the item. At least one item stays selected.
void selectItem(Batch& batch, int index, Qt::KeyboardModifiers modifiers);
void selectSingleIndex(Batch& batch, int index);
void selectAll(Batch& batch);

// Indices of the items that batch operations act on, ascending; the current one when none is
// selected.
QList<int> selectedIndicesForBatch(const Batch& batch);
// Indices of the other items that an edit of the current one reaches: none unless several are
// selected.
QList<int> otherSelectedIndices(const Batch& batch);

// New items replace the old; the first becomes current, and the only selected one.
void replaceItems(Batch& batch, const PublicationItems& items);
// Removes an item. If it was the current one, the item that takes its index becomes current, or the
// new last one.
void removeItem(Batch& batch, QUuid id);

// Which selection in the current item may stay; any other gives way to the first text.
enum class LayerRule {
    any,
    anyOrNone,    // no selected layer stays no selected layer
    text,
};
// Makes the batch keep what Batch.h promises, after items came or went, another became current or
// lost a layer.
void keepInvariants(Batch& batch, LayerRule rule = LayerRule::any);

}    // namespace BatchSelection
