#pragma once

#include "canvas/TextLayoutMetrics.h"

#include "model/TextLayer.h"

#include <QSizeF>

#include <algorithm>

// The size of a layer's type, in canvas pixels. `designScale`: canvas pixels per design unit.
namespace ExportCanvasRenderer {

// Canvas pixels per design unit; 1 when a side of `reference` is 1 or less.
double designScale(QSizeF exportSize, QSizeF reference);

constexpr double clamp(double value, double lower, double upper)
{
    return std::min(std::max(value, lower), upper);
}

// The font that layer.fontName names: a full name, or a family in its regular face. "System" and
// fonts that are not installed give Inter in the slot's weight.
DesignFont nsFont(const TextLayer& layer, double size);

// baseFontSize() is the slot's share of the area; wantedFontSize() multiplies it by the layer's
// font scale, within bounds. Fitting starts from there.
double baseFontSize(CopySlot slot, QSizeF area);    // no bounds, font scale 1
double wantedFontSize(const TextLayer& layer, QSizeF area, double designScale);
// The largest size at which the text fits, in steps of max(1, designScale) down from
// wantedFontSize(); the smallest allowed size when none fits.
double fittedFontSize(const TextLayer& layer, QSizeF area, double designScale);
// The layer's text laid out at fittedFontSize(), as wide as the area.
LaidOutText fittedText(const TextLayer& layer, QSizeF area, double designScale);

// Whether a measured text stays inside its area, but for half a pixel.
bool fits(QSizeF measured, QSizeF area);

// The layer's text in a font of `size` canvas pixels.
StyledText styledText(const TextLayer& layer, double size);

}    // namespace ExportCanvasRenderer
