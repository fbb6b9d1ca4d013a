#pragma once

#include "canvas/ItemPainter.h"

// Problems of one text of an item. The window shows them; they are never exported.
struct TextWarning {
    QUuid layer;
    CopySlot slot = CopySlot::title;
    bool overflows = false;            // the text does not fit the box even at the smallest size
    bool lacksGlyphs = false;          // the text has a character that no installed font has
    std::optional<double> contrast;    // set only when it is too low; rounded down to tenths
    double leastContrast = 0;          // the contrast that the text should reach
    // The text reaches into a part of a story that the network covers. Only told when publishing.
    bool isOutsideSafeZone = false;
    bool operator==(const TextWarning&) const = default;
};

// The contrast between a text and its background, as the ratio of WCAG 2, 1..21. Of all pixels
// below the text, the worst fifth is ignored; the result is the lowest contrast of the others.
// `scale`: device pixels per canvas pixel. `picture` must not contain the letters yet. Nothing for
// a text outside the picture.
std::optional<double> textContrast(const LaidOutTextLayer& layer, const QImage& picture,
                                   double scale);

// The contrast that a text should reach; lower for large type. `designScale`: canvas pixels per
// design unit.
double leastContrast(const LaidOutText& text, double designScale);

struct JudgedPicture {
    QImage picture;
    QList<TextWarning> warnings;    // in drawing order; only texts with a problem
};
// Paints the item like paintedItem() and judges its texts. If the item has a photo but `photo` is
// null, contrasts are not judged, because the background is then plain black.
JudgedPicture judgedItem(const ItemLayout& layout, QSize pixels, const QImage& photo);
