#pragma once

#include <QByteArray>
#include <QImage>

// The main picture of a HEIC file in sRGB, rotated as the container says. Null when it cannot be
// read, holds more than 64 megapixels, or is coded larger than `announced`, the largest size in the
// container. Its EXIF orientation repeats the container's and is ignored.
QImage readHeicPhoto(const QByteArray& bytes, QSize announced);
