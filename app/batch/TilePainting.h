#pragma once
#include "app/batch/Tile.h"

#include <QImage>
#include <QRect>

class QPainter;
struct Theme;

// The caption with number and name below a tile's picture.
inline constexpr int tileCaptionGap = 5, tileCaptionHeight = 16;

// A tile with its place and state in the grid.
struct TileLook {
    const Tile& tile;
    int number = 1;          // in the batch, counted from 1
    QRect box;               // of the picture
    QImage picture;          // null: none is there yet
    bool isExact = false;    // the picture has the size that the box needs
    bool isHovered = false;
    bool isOneOfSeveral = false;    // selected together with other tiles
    double turn = 0;                // of the spinner, 0 to 1
};

void paintTile(QPainter& painter, const Theme& theme, const TileLook& look);
void paintEmptyTile(QPainter& painter, const Theme& theme, const QRectF& box);
// A tile's name, state and whether it has warnings, for screen readers.
QString spokenTile(const Tile& tile);
