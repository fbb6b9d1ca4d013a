#pragma once

#include "model/Vocabulary.h"

enum class LayerTextAlignment { leading, center, trailing, justified };

struct LayerTextAlignmentRow {
    LayerTextAlignment value;
    QStringView rawValue;
    QStringView icon;
    LayerTextAlignment text;     // of the lines, where they cannot be justified
    LayerTextAlignment frame;    // of the block of lines inside the frame of the layer
};

template <>
struct Vocabulary<LayerTextAlignment> {
    using enum LayerTextAlignment;
    static constexpr std::array rows{
        LayerTextAlignmentRow{leading, u"leading", u"align-left", leading, leading},
        LayerTextAlignmentRow{center, u"center", u"align-center", center, center},
        LayerTextAlignmentRow{trailing, u"trailing", u"align-right", trailing, trailing},
        LayerTextAlignmentRow{justified, u"justified", u"align-justify", leading, leading},
    };
};
static_assert(rowsAreInOrder<LayerTextAlignment>());
