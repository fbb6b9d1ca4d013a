#pragma once

#include "studio/batch/Batch.h"

#include <variant>

// A copied style, of a text or of a shape, without its text and place. What it is copied from and
// pasted into is the selected layer.
class StyleClipboard {
public:
    // Of the item's layer of the selected slot, or its shape that is selected. The name of what was
    // copied; empty when there is no such layer.
    QString copyFrom(const PublicationItem& item, const Batch& batch);
    bool fits(const Batch& batch) const;
    // Reaches the other selected items. Changes nothing when it does not fit.
    void pasteInto(Batch& batch) const;

private:
    std::variant<std::monostate, TextLayer, ShapeLayer> m_style;
};
