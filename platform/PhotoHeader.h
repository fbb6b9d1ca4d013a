#pragma once

#include "platform/PhotoDecoder.h"

#include <QIODevice>

enum class PhotoFormat { jpeg, png, tiff, webp, heic, bmp, gif };

// What the first bytes of a photo say, read without any codec: codecs allocate, and some search a
// broken file for long. The bytes decide the format, never the name.
struct PhotoHeader {
    PhotoFormat format = PhotoFormat::jpeg;
    QSize size;               // file pixels as stored, before any turning
    int bytesPerPixel = 4;    // of the picture the codec builds
    // JPEG only.
    qint64 coefficientBytes = 0;    // held before the first pixel when the scans are several
    qint64 frameSizeOffset = 0;     // where the file says its height and width, two bytes each
    bool paddable = false;          // see paddedToLevel()
};

// Nothing for an unknown format, for more than 300 megapixels, and for more than 64 of what cannot
// be decoded reduced.
std::optional<PhotoHeader> readPhotoHeader(QIODevice& file);

// `wanted`, or the next level whose picture needs at most 256 MB.
PhotoLevel affordableLevel(const PhotoHeader& header, PhotoLevel wanted);

// Bytes that decoding at a level takes at its worst, without the file itself.
qint64 decodingBytes(const PhotoHeader& header, PhotoLevel level);

// The bytes of a JPEG whose announced size is rounded up to whole pixels of the level. Qt takes its
// reduction from the ratio of the two sizes and decodes 2560x3837 at 5/8 when 1280x1919 is asked
// for. Rounded to 2560x3838 the ratio is 2, nothing is scaled afterwards, and the added pixels are
// in the file already, which stores blocks of 8x8.
QByteArray paddedToLevel(const PhotoHeader& header, QByteArray jpeg, PhotoLevel level);

// Whether the chunks of a PNG follow each other to its end with the right checksums. libpng writes
// to standard error what it dislikes there.
bool hasSoundChunks(const QByteArray& png);

// Scans in a JPEG, thumbnails included: each runs over the whole picture, so a few kilobytes of
// them would hold a codec for minutes.
int scanCount(const QByteArray& jpeg);
