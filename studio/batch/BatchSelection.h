#pragma once

#include "studio/batch/Batch.h"

#include <QList>
#include <Qt>

// Which items and layers the commands act on. Pure operations on the value; indices outside the
// batch are ignored.
namespace BatchSelection {

// A click: alone selects one, Shift a range from the anchor, Ctrl (Command) toggles. At least one
// item stays selected.
void selectItem(Batch& batch, int index, Qt::KeyboardModifiers modifiers);
void selectSingleIndex(Batch& batch, int index);
void selectAll(Batch& batch);

// The items that batch operations act on, in batch order; the current one when none is selected.
QList<int> selectedIndicesForBatch(const Batch& batch);
// The other items that an edit of the current one reaches: none unless several are selected.
QList<int> otherSelectedIndices(const Batch& batch);

// New items replace the old; the first is current, alone in the selection.
void replaceItems(Batch& batch, const PublicationItems& items);
// Whatever else is current stays so; after the current one comes the item that took its place, or
// the new last one.
void removeItem(Batch& batch, QUuid id);

// Which layer of the current item may stay selected; where it may not, the first text is.
enum class LayerRule {
    any,
    anyOrNone,    // no selected layer stays no selected layer
    text,
};
// Makes the batch keep what Batch.h promises, after items came or went, another became current or
// lost a layer.
void keepInvariants(Batch& batch, LayerRule rule = LayerRule::any);

}    // namespace BatchSelection
