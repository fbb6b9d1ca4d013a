#pragma once
#include "app/batch/Tile.h"

#include <QImage>
#include <QRect>

class QPainter;
struct Theme;

// Below the picture of a tile: its number and name.
inline constexpr int tileCaptionGap = 5, tileCaptionHeight = 16;

// A tile as it stands in the grid.
struct TileLook {
    const Tile& tile;
    int number = 1;          // as people count
    QRect box;               // of the picture
    QImage picture;          // null: none is there yet
    bool isExact = false;    // it has the size that the box needs
    bool isHovered = false;
    bool isOneOfSeveral = false;    // that are selected
    double turn = 0;                // of a spinner, 0 to 1
};

void paintTile(QPainter& painter, const Theme& theme, const TileLook& look);
void paintEmptyTile(QPainter& painter, const Theme& theme, const QRectF& box);
// A tile's name and what is to be said of it, for screen readers.
QString spokenTile(const Tile& tile);
