#pragma once

#include "canvas/LayerFrame.h"
#include "studio/batch/Batch.h"

#include <functional>

// Edits layers of the current item and copies the edits to the other selected items. The functions
// change nothing but `batch`.
namespace LayerEdits {

// The part of a layer that an edit copies to the other selected items; the text is never copied.
enum class Copied {
    style,    // the whole style and the alignment; for a shape also its kind
    visibility,
    frame,
};

// Copies the part `copied` of `layer` to the layer of the same slot in every other selected item.
void applyLayerChangeToSelectedItems(Batch& batch, const TextLayer& layer, Copied copied);
// Copies the part `copied` of `shape` to the shape with the same id in every other selected item.
// Copied::visibility copies nothing, because a shape is always visible.
void applyShapeChangeToSelectedItems(Batch& batch, const ShapeLayer& shape, Copied copied);

// In the current item, puts `layer` in the place of the layer with its id. Copies the part `copied`
// of `layer` to the other selected items.
void editLayer(Batch& batch, const TextLayer& layer, Copied copied);
// In the current item, puts `shape` in the place of the shape with its id. Copies the style of
// `shape`, but not its frame, to the other selected items.
void editShape(Batch& batch, const ShapeLayer& shape);

// Replaces the current item by `item`, an edited copy of it. Does nothing if `item` has another id.
void replaceCurrentItem(Batch& batch, const PublicationItem& item);
// Replaces the current item by `item`, a copy edited on the canvas. Shapes removed and texts hidden
// in `item` are also removed and hidden in the other selected items.
void commitCanvasItem(Batch& batch, const PublicationItem& item);

// Copies the frame of `movedLayer`, which a gesture on the canvas has moved, to the corresponding
// layers of the other selected items.
void syncCurrentCanvasEditsToSelectedItems(Batch& batch, QUuid movedLayer);

// What becomes of a frame; `smallest` applies to the layer whose frame it is.
using FrameChange = std::function<CodableRect(const CodableRect& frame, SmallestFrame smallest)>;
// Changes the frame of the selected layer in the current item, and copies it to the other selected
// items, as a gesture on the canvas does.
void changeSelectedFrame(Batch& batch, const FrameChange& change);

// Adds a new shape to the middle of every selected item, with one id in all of them, and selects
// it.
void addShape(Batch& batch, ShapeKind kind);

// Deletes the selected layer from the current item and the other selected items. A shape is
// removed; a text is only hidden, because every item has one layer per slot.
void deleteSelectedLayer(Batch& batch);
void deleteShape(Batch& batch, QUuid shape);

}    // namespace LayerEdits
