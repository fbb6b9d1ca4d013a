#pragma once

#include "studio/batch/Batch.h"

#include <variant>

// Copies the style of one text or shape and pastes it into others. The words of a text and the
// frame are not pasted.
class StyleClipboard {
public:
    // Copies from `item` the layer that corresponds to the selected layer of `batch`: the text of
    // the same slot, or the shape with the same id. Returns the name of the copied layer; empty if
    // `item` has no such layer.
    QString copyFrom(const PublicationItem& item, const Batch& batch);
    bool fits(const Batch& batch) const;
    // Pastes the style into the selected layer, and into the corresponding layers of the other
    // selected items. Does nothing if fits() is false.
    void pasteInto(Batch& batch) const;

private:
    std::variant<std::monostate, TextLayer, ShapeLayer> m_style;
};
