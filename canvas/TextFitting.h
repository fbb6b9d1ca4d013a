#pragma once

#include "canvas/TextLayoutMetrics.h"

#include "model/TextLayer.h"

#include <QSizeF>

#include <algorithm>

// How big a layer's type may be. Sizes in canvas pixels; `designScale` is canvas pixels per design
// unit.
namespace ExportCanvasRenderer {

// 1 for a reference of 1 or less on either side.
double designScale(QSizeF exportSize, QSizeF reference);

constexpr double clamp(double value, double lower, double upper)
{
    return std::min(std::max(value, lower), upper);
}

// The named font (a full name, else a family in its regular face) or, for "System" and for one that
// is not installed, Inter in the slot's weight.
DesignFont nsFont(const TextLayer& layer, double size);

// The slot's share of the area at the layer's own scale: what fitting starts from.
double baseFontSize(CopySlot slot, QSizeF area);    // at a scale of 1, without bounds
double wantedFontSize(const TextLayer& layer, QSizeF area, double designScale);
// The largest size, in steps of max(1, designScale) down from the slot's share of the area, at
// which the text fits; the lower bound when none does.
double fittedFontSize(const TextLayer& layer, QSizeF area, double designScale);
// The layer's text laid out at that size, as wide as the area.
LaidOutText fittedText(const TextLayer& layer, QSizeF area, double designScale);

// Whether a measured text keeps inside its area.
bool fits(QSizeF measured, QSizeF area);

// The layer's text at that size.
StyledText styledText(const TextLayer& layer, double size);

}    // namespace ExportCanvasRenderer
