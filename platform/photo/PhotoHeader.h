#pragma once

#include "platform/photo/PhotoLevel.h"

#include <QByteArray>
#include <QIODevice>

#include <optional>

enum class PhotoFormat { jpeg, png, tiff, webp, heic, bmp, gif };

// What the first bytes of a photo say about it. They are read without a codec, because codecs
// allocate memory, and some search a broken file for a long time. The bytes decide the format,
// never the file's name.
struct PhotoHeader {
    PhotoFormat format = PhotoFormat::jpeg;
    QSize size;               // in pixels of the file, before the photo is turned upright
    int bytesPerPixel = 4;    // of the picture that the codec creates
    // Bytes that the codec allocates besides the picture: the coefficients of a JPEG with several
    // scans, or a strip or tile of a TIFF.
    qint64 workingBytes = 0;
    // The members below are set only for JPEG.
    int orientation = 1;           // see exifOrientation()
    qint64 frameSizeOffset = 0;    // position of the height and width, two bytes each
    bool paddable = false;         // whether paddedToLevel() may change the size
};

// Returns nothing for an unknown format, for a JPEG of more than 300 megapixels, and for a photo of
// another format of more than 64 megapixels.
std::optional<PhotoHeader> readPhotoHeader(QIODevice& file);

// Returns `wanted` if its picture takes at most 256 MB, otherwise the next coarser level whose
// picture does. For formats other than JPEG, returns PhotoLevel::full.
PhotoLevel affordableLevel(const PhotoHeader& header, PhotoLevel wanted);

// Bytes of memory that decoding at `level` takes at most, without the file itself.
qint64 decodingBytes(const PhotoHeader& header, PhotoLevel level);

// The orientation in EXIF data: 1 is upright, 2 to 8 are mirrored or rotated. Returns 1 if there is
// none.
int exifOrientation(QByteArray exif);
