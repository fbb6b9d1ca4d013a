#pragma once
#include "app/presets/GalleryLayout.h"

#include <QImage>

class QPainter;
struct Theme;

// What the pointer is on inside a part.
enum class GallerySpot { none, part, disc, more };

// How a part looks besides what its section and tile tell.
struct GalleryPartLook {
    QImage picture = {};    // of a tile; null while there is none yet
    GallerySpot hovered = GallerySpot::none;
    bool isApplied = false;
    bool isPreviewed = false;
    bool isMarked = false;     // by the keyboard
    bool isRenamed = false;    // a field covers the caption
};

// Paints a part at its place in the content.
void paintPart(QPainter& painter, const Theme& theme, const GallerySection& section,
               const GalleryPart& part, const GalleryPartLook& look);
// Whether the name of the tile is cut off below its picture.
bool isNameCut(const GallerySection& section, const GalleryPart& part, const GalleryPartLook& look);
// How far a part is painted beyond its `whole`.
inline constexpr int galleryReach = 6;
