#pragma once

#include "canvas/TextLayoutMetrics.h"

#include "model/TextLayer.h"

#include <QSizeF>

#include <algorithm>

// Finds the font size of a text layer, in canvas pixels. `area`: size of the layer's box without
// its inset, in canvas pixels. `designScale`: canvas pixels per design unit.
namespace ExportCanvasRenderer {

// Canvas pixels per design unit; 1 when a side of `reference` is 1 or less.
double designScale(QSizeF exportSize, QSizeF reference);

constexpr double clamp(double value, double lower, double upper)
{
    return std::min(std::max(value, lower), upper);
}

// The font that layer.fontName names. The name is a full font name, or a family, which stands for
// its regular face. "System" and fonts that are not installed give Inter in the weight of the
// layer's slot.
DesignFont nsFont(const TextLayer& layer, double size);

// Whether nsFont() gives the font that `fontName` names. True for "System".
bool isInstalled(const QString& fontName);
// The family of a full font name, as far as the name tells without the font: the words before those
// that describe a style.
QString familyOf(const QString& fontName);

// baseFontSize() depends only on the slot and the area; it is not clamped. wantedFontSize() is
// baseFontSize() times layer.fontScale, clamped to the allowed sizes.
double baseFontSize(CopySlot slot, QSizeF area);
double wantedFontSize(const TextLayer& layer, QSizeF area, double designScale);
// The largest size at which the text fits, in steps of max(1, designScale) down from
// wantedFontSize(); the smallest allowed size when none fits.
double fittedFontSize(const TextLayer& layer, QSizeF area, double designScale);
// The layer's text laid out at fittedFontSize() in the width of the area.
LaidOutText fittedText(const TextLayer& layer, QSizeF area, double designScale);

// Whether a text of size `measured` fits the area, with half a pixel of tolerance.
bool fits(QSizeF measured, QSizeF area);

// The layer's text in a font of `size` canvas pixels.
StyledText styledText(const TextLayer& layer, double size);

}    // namespace ExportCanvasRenderer
