#pragma once

#include "platform/photo/PhotoLevel.h"

#include <QByteArray>
#include <QIODevice>

#include <optional>

enum class PhotoFormat { jpeg, png, tiff, webp, heic, bmp, gif };

// The facts in the first bytes of a photo, read without a codec: codecs allocate, and some search a
// broken file for long. The bytes decide the format, never the file's name.
struct PhotoHeader {
    PhotoFormat format = PhotoFormat::jpeg;
    QSize size;               // file pixels as stored, before any turning
    int bytesPerPixel = 4;    // of the picture the codec builds
    // Bytes the codec allocates besides the picture: the coefficients of a JPEG of several scans, a
    // strip or tile of a TIFF.
    qint64 workingBytes = 0;
    // The members below are for JPEG only.
    int orientation = 1;           // see exifOrientation()
    qint64 frameSizeOffset = 0;    // of the height and width in the file, two bytes each
    bool paddable = false;         // whether paddedToLevel() may change the size
};

// Nothing for an unknown format, for a JPEG of more than 300 megapixels, or for another format of
// more than 64.
std::optional<PhotoHeader> readPhotoHeader(QIODevice& file);

// `wanted`, or the next coarser level whose picture needs at most 256 MB. Full for other formats
// than JPEG.
PhotoLevel affordableLevel(const PhotoHeader& header, PhotoLevel wanted);

// Bytes of memory that decoding at `level` takes at its worst, without the file itself.
qint64 decodingBytes(const PhotoHeader& header, PhotoLevel level);

// The orientation in EXIF data: 1 is upright, 2 to 8 are mirrored or rotated. 1 if there is none.
int exifOrientation(QByteArray exif);
