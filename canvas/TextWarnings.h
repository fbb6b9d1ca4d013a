#pragma once

#include "canvas/ItemPainter.h"

// Problems of one text of an item. Shown beside the item, never exported.
struct TextWarning {
    QUuid layer;
    CopySlot slot = CopySlot::title;
    bool overflows = false;            // even the smallest type does not fit the box
    bool lacksGlyphs = false;          // no installed font has one of its characters
    std::optional<double> contrast;    // only when too low; rounded down to tenths
    double leastContrast = 0;          // the required contrast for type of its size
    bool operator==(const TextWarning&) const = default;
};

// The contrast between a text and its ground, as the ratio of WCAG 2, 1..21, at the least readable
// parts of the text that matter. `scale`: device pixels per canvas pixel. `picture` must not
// contain the letters yet. Nothing for a text outside the picture.
std::optional<double> textContrast(const LaidOutTextLayer& layer, const QImage& picture,
                                   double scale);

// The contrast that a text should reach; lower for large type. `designScale`: canvas pixels per
// design unit.
double leastContrast(const LaidOutText& text, double designScale);

struct JudgedPicture {
    QImage picture;
    QList<TextWarning> warnings;    // in drawing order; only texts with a problem
};
// Paints the item like paintedItem() and judges its texts meanwhile. If the item's photo cannot be
// read, contrasts are not judged: the ground is then plain black.
JudgedPicture judgedItem(const ItemLayout& layout, QSize pixels, const QImage& photo);
