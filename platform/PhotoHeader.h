#pragma once

#include "platform/PhotoLevel.h"

#include <QByteArray>
#include <QIODevice>

#include <optional>

enum class PhotoFormat { jpeg, png, tiff, webp, heic, bmp, gif };

// What the first bytes of a photo say, read without any codec: codecs allocate, and some search a
// broken file for long. The bytes decide the format, never the name.
struct PhotoHeader {
    PhotoFormat format = PhotoFormat::jpeg;
    QSize size;               // file pixels as stored, before any turning
    int bytesPerPixel = 4;    // of the picture the codec builds
    // The codec's own: the coefficients of a JPEG of several scans, a strip or tile of a TIFF.
    qint64 workingBytes = 0;
    // JPEG only.
    int orientation = 1;           // see exifOrientation()
    qint64 frameSizeOffset = 0;    // where the file says its height and width, two bytes each
    bool paddable = false;         // see paddedToLevel()
};

// Nothing for an unknown format, for more than 300 megapixels, and for more than 64 of what cannot
// be decoded reduced.
std::optional<PhotoHeader> readPhotoHeader(QIODevice& file);

// `wanted`, or the next level whose picture needs at most 256 MB.
PhotoLevel affordableLevel(const PhotoHeader& header, PhotoLevel wanted);

// Bytes that decoding at a level takes at its worst, without the file itself.
qint64 decodingBytes(const PhotoHeader& header, PhotoLevel level);

// What EXIF data says of the picture's orientation: 1 is upright, 2 to 8 are the mirrored and
// turned ones.
int exifOrientation(QByteArray exif);
