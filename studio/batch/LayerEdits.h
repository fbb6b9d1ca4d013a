#pragma once

#include "studio/batch/Batch.h"

// Edits of layers and how they reach the other selected items. Pure operations on the value.
namespace LayerEdits {

// The part of a layer that an edit copies to the other selected items; the text is never copied.
enum class Copied {
    style,    // the whole style and the alignment; for a shape also its kind
    visibility,
    frame,
};

// Copies the part `copied` of `layer` to the layer of its slot in every other selected item.
void applyLayerChangeToSelectedItems(Batch& batch, const TextLayer& layer, Copied copied);
// Copies the part `copied` of `shape` to the shapes of its id in the other selected items. A shape
// has no visibility to copy.
void applyShapeChangeToSelectedItems(Batch& batch, const ShapeLayer& shape, Copied copied);

// Replaces the current item's layer of this id by `layer`, and copies the part named by `copied` to
// the other selected items.
void editLayer(Batch& batch, const TextLayer& layer, Copied copied);
// Replaces the current item's shape of this id, and copies its style to the other selected items,
// where the shape's frame stays as it is.
void editShape(Batch& batch, const ShapeLayer& shape);

// Replaces the current item by another state of it; ignores an item of another id.
void replaceCurrentItem(Batch& batch, const PublicationItem& item);
// Replaces the current item by what the canvas made of it. A shape removed there is removed from
// the other selected items, and a text hidden there is hidden in them.
void commitCanvasItem(Batch& batch, const PublicationItem& item);

// Copies the frame of the layer that a gesture on the canvas moved to the other selected items.
void syncCurrentCanvasEditsToSelectedItems(Batch& batch, QUuid movedLayer);

// Adds a new shape in the middle of every selected item, everywhere with the same id, and selects
// it.
void addShape(Batch& batch, ShapeKind kind);

// Removes a selected shape from the current item and from the other selected items that hold its
// id; hides a selected text, because every item keeps one layer per slot.
void deleteSelectedLayer(Batch& batch);
void deleteShape(Batch& batch, QUuid shape);

}    // namespace LayerEdits
