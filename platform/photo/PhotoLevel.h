#pragma once

#include <QSize>

// How many pixels of the file make one decoded pixel, in each direction.
enum class PhotoLevel { full = 1, half = 2, quarter = 4, eighth = 8 };

// The size of a photo decoded at `level`, rounded up to whole pixels.
QSize sizeAtLevel(QSize photo, PhotoLevel level);

// The coarsest level at which the decoded photo is at least as wide and as high as `needed`; full
// if there is none.
PhotoLevel coveringLevel(QSize photo, QSize needed);
