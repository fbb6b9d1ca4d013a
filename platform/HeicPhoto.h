#pragma once

#include <QByteArray>
#include <QImage>

// The main picture of a HEIC file in sRGB, turned as the container says; null when it cannot be
// read, holds more than 64 megapixels, or is larger than `announced`, the largest size that its
// container gives. Its EXIF orientation repeats the container's and is ignored.
QImage readHeicPhoto(const QByteArray& bytes, QSize announced);
