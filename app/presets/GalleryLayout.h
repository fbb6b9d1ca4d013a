#pragma once
#include "app/presets/Gallery.h"

#include <QRect>

// A part of the gallery that can be pressed, or a note.
struct GalleryPart {
    enum class Kind { heading, random, refresh, sectionMenu, note, tile };
    Kind kind = Kind::heading;
    int section = 0;    // index
    int tile = -1;      // index in the section; -1 for other parts
    QRect rect;         // in the gallery's content; of a tile without its caption
    QRect whole;        // with the caption
};

struct GalleryShape {
    int width = 0;              // of the content, with its margins
    int left = 0, right = 0;    // margins
    double ratio = 0.8;         // width / height of the pictures
};

struct GalleryLayout {
    QList<GalleryPart> parts;    // from top to bottom, each row from left to right
    QSize tile, smallTile;       // sizes of the pictures
    int columns = 2;
    int height = 0;    // of the content
};

// In pixels, but for the last.
inline constexpr int galleryHeadingHeight = 28, galleryCaptionGap = 4, galleryCaptionHeight = 20,
                     galleryMissingHeight = 16;
inline constexpr int galleryMoreSide = 20, discSide = 22, discInset = 5;
inline constexpr int recentTiles = 5;

GalleryLayout laidOut(const QList<GallerySection>& sections, const GalleryShape& shape);

// Of the link that tries another design, with or without its key.
int randomLinkWidth(bool withKey);

// Where the caption of a tile and its parts lie, in the gallery's content.
QRect captionOf(const GalleryPart& tile);
QRect moreOf(const GalleryPart& tile);
QRect discOf(const GalleryPart& tile);    // of the star

// The part that an arrow key goes to from `from`, and Home and End; `from` if there is none, and -1
// for another key.
int partByKey(const GalleryLayout& layout, int from, int key);
