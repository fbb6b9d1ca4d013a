#pragma once

#include "studio/batch/Batch.h"

#include <variant>

// Holds the copied style of a text or of a shape, without text and frame. Styles are copied from
// the selected layer and pasted into it.
class StyleClipboard {
public:
    // Copies the style of the item's text in the selected text's slot, or of the selected shape.
    // Gives the name of what was copied; empty when the item has no such layer.
    QString copyFrom(const PublicationItem& item, const Batch& batch);
    bool fits(const Batch& batch) const;
    // Pastes into the selected layer and to the other selected items. Does nothing unless the style
    // fits.
    void pasteInto(Batch& batch) const;

private:
    std::variant<std::monostate, TextLayer, ShapeLayer> m_style;
};
