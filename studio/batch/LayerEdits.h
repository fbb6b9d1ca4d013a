#pragma once

#include "studio/batch/Batch.h"

// Edits of layers and how they reach the other selected items. Pure operations on the value.
namespace LayerEdits {

// What an edit of a layer copies to the other selected items; the text never goes along.
enum class Copied {
    style,    // all of it, and the alignment; of a shape also its kind
    visibility,
    frame,
};

// Writes that of the layer into the layer of the same slot of every other selected item.
void applyLayerChangeToSelectedItems(Batch& batch, const TextLayer& layer, Copied copied);
// Writes that of the shape, which is never hidden, into the shapes of its id in the other selected
// items.
void applyShapeChangeToSelectedItems(Batch& batch, const ShapeLayer& shape, Copied copied);

// Writes the layer into the current item, by its id, and what is copied on to the other selected
// ones.
void editLayer(Batch& batch, const TextLayer& layer, Copied copied);
// A shape's frame stays where it is in the others.
void editShape(Batch& batch, const ShapeLayer& shape);

// The current item by another state of it; an item of another id is refused.
void replaceCurrentItem(Batch& batch, const PublicationItem& item);
// The same for what the canvas hands back: a shape removed there, or a text hidden, goes from the
// other selected items too.
void commitCanvasItem(Batch& batch, const PublicationItem& item);

// After a gesture on the canvas: sends the frame of the layer that it moved.
void syncCurrentCanvasEditsToSelectedItems(Batch& batch, QUuid movedLayer);

// A new shape in the middle of every selected item, under one id, which is then the selected layer.
void addShape(Batch& batch, ShapeKind kind);

// A selected shape is removed, here and in the other selected items that hold its id; a selected
// text is hidden, because every item keeps one layer per slot.
void deleteSelectedLayer(Batch& batch);
void deleteShape(Batch& batch, QUuid shape);

}    // namespace LayerEdits
