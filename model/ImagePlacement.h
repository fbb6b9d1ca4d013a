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

// Fractions of the canvas size by which the photo's centre lies off the canvas centre.
struct CanvasOffset {
    double x = 0, y = 0;
    bool operator==(const CanvasOffset&) const = default;
};

// How the photo sits in the canvas.
struct ImagePlacement {
    ImageFitMode mode = ImageFitMode::fill;
    double zoom = 1.0;    // 1 = the natural size of the mode
    CanvasOffset offset;
    bool operator==(const ImagePlacement&) const = default;
};
