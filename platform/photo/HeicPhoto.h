#pragma once

#include <QByteArray>
#include <QImage>

// The main picture of a HEIC file in sRGB, rotated as the container says. Null if it cannot be
// read, has more than 64 megapixels, or is coded at a larger size than `announced`, the largest
// size in the container. The EXIF orientation is ignored, because it repeats the rotation in the
// container.
QImage readHeicPhoto(const QByteArray& bytes, QSize announced);
