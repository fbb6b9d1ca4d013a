#pragma once

#include "canvas/ItemPainter.h"

// What a careful designer would say about a text of an item. Shown beside it, never exported.
struct TextWarning {
    QUuid layer;
    CopySlot slot = CopySlot::title;
    bool overflows = false;            // the smallest type does not fit the box
    bool lacksGlyphs = false;          // no installed font has one of its characters
    std::optional<double> contrast;    // where it is too low; in tenths, rounded down
    double leastContrast = 0;          // for type of its size
    bool operator==(const TextWarning&) const = default;
};

// The ratio of WCAG 2, 1..21, between a text and what lies under its letters, at the least readable
// of its parts that matter. `scale`: device pixels of the picture per canvas pixel; the letters are
// not drawn yet. Nothing for a text that is not on the picture.
std::optional<double> textContrast(const LaidOutTextLayer& layer, const QImage& picture,
                                   double scale);

// What the contrast of a text should reach: large type needs less. `designScale`: canvas pixels per
// design unit.
double leastContrast(const LaidOutText& text, double designScale);

struct JudgedPicture {
    QImage picture;
    QList<TextWarning> warnings;    // in drawing order; of those texts alone that deserve one
};
// As paintedItem, and what is to be said about it, from one painting. A photo that cannot be read
// leaves its texts on black ground, of which nothing is said.
JudgedPicture judgedItem(const ItemLayout& layout, QSize pixels, const QImage& photo);
