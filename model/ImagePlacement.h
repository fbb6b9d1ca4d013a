#pragma once

#include "model/Vocabulary.h"

enum class ImageFitMode { fill, fit };

struct ImageFitModeRow {
    ImageFitMode value;
    QStringView rawValue;
    QStringView icon;
};

template <>
struct Vocabulary<ImageFitMode> {
    static constexpr std::array rows{
        ImageFitModeRow{ImageFitMode::fill, u"Llenar", u"fit-fill"},
        ImageFitModeRow{ImageFitMode::fit, u"Encajar", u"fit-inside"},
    };
};
static_assert(rowsAreInOrder<ImageFitMode>());

// The photo's centre relative to the canvas centre, in fractions of the canvas size.
struct CanvasOffset {
    double x = 0, y = 0;
    bool operator==(const CanvasOffset&) const = default;
};

// How the photo lies on the canvas.
struct ImagePlacement {
    ImageFitMode mode = ImageFitMode::fill;
    double zoom = 1.0;    // multiplies the size that `mode` gives
    CanvasOffset offset;
    bool operator==(const ImagePlacement&) const = default;
};
