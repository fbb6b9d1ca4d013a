#pragma once

#include "studio/Batch.h"

#include <QFlags>

// Edits of layers and how they reach the other selected items. Pure operations on the value.
namespace LayerEdits {

// What goes along with the style and the alignment; the text never does.
enum class Along { frame = 1, visibility = 2 };
Q_DECLARE_FLAGS(AlongFlags, Along)

// Writes the layer's properties into the layer of the same slot of every other selected item.
void applyLayerChangeToSelectedItems(Batch& batch, const TextLayer& layer, AlongFlags along = {});
// Writes the shape into the shapes of its id in the other selected items.
void applyShapeChangeToSelectedItems(Batch& batch, const ShapeLayer& shape);

// Writes the layer into the current item, by its id, and on to the other selected ones.
void editLayer(Batch& batch, const TextLayer& layer, AlongFlags along);
void editShape(Batch& batch, const ShapeLayer& shape);

// The current item by another state of it; an item of another id is refused.
void replaceCurrentItem(Batch& batch, const PublicationItem& item);
// The same for what the canvas hands back: a shape removed there, or a text hidden, goes from the
// other selected items too.
void commitCanvasItem(Batch& batch, const PublicationItem& item);

// After a gesture on the canvas: sends the layer that it moved, frame included.
void syncCurrentCanvasEditsToSelectedItems(Batch& batch, QUuid movedLayer);

// A new shape in the middle of every selected item, under one id, which is then the selected layer.
void addShape(Batch& batch, ShapeKind kind);

// A selected shape is removed, here and in the other selected items that hold its id; a selected
// text is hidden, because every item keeps one layer per slot.
void deleteSelectedLayer(Batch& batch);
void deleteShape(Batch& batch, QUuid shape);

}    // namespace LayerEdits

Q_DECLARE_OPERATORS_FOR_FLAGS(LayerEdits::AlongFlags)
