#pragma once
#include "app/batch/Tile.h"

#include <QImage>
#include <QRect>

class QPainter;
struct Theme;

// Pixels between a tile's picture and the caption below it, and height of the caption.
inline constexpr int tileCaptionGap = 5, tileCaptionHeight = 16;

// What paintTile() paints: a tile, and its position and state in the grid.
struct TileLook {
    const Tile& tile;
    int number = 1;          // position in the batch, counted from 1
    QRect box;               // where the picture is painted
    QImage picture;          // null while there is none yet
    bool isExact = false;    // `picture` has the size of `box` in device pixels
    bool isHovered = false;
    bool isOneOfSeveral = false;    // selected together with other tiles
    double turn = 0;                // how far the spinner has turned, 0 to 1
};

void paintTile(QPainter& painter, const Theme& theme, const TileLook& look);
void paintEmptyTile(QPainter& painter, const Theme& theme, const QRectF& box);
// What screen readers say for a tile: its name, its state and whether it has warnings.
QString spokenTile(const Tile& tile);
QString toolTipOf(const Tile& tile);    // plain text, in lines
