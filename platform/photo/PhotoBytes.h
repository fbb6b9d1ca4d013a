#pragma once

#include "platform/photo/PhotoHeader.h"

// These functions change or check the bytes of a photo before a codec sees them.

// Rounds the size announced in a JPEG up to whole pixels of `level`. Qt takes its reduction from
// the ratio of the two sizes and decodes 2560x3837 at 5/8 when 1280x1919 is asked for. Rounded to
// 2560x3838 the ratio is 2 and nothing is scaled afterwards. The file already holds the added
// pixels, as it stores blocks of 8x8.
QByteArray paddedToLevel(const PhotoHeader& header, QByteArray jpeg, PhotoLevel level);

// Renames the segments of a JPEG that hold neither picture nor colour profile to a kind that
// readers pass over: Qt keeps several copies of comments and metadata.
QByteArray withoutMetadata(QByteArray jpeg);

// Number of scans in a JPEG. Each runs over the whole picture, so a few kilobytes of scans would
// keep a codec busy for minutes.
int scanCount(const QByteArray& jpeg);

// The chunks of a PNG that its picture needs; the colour profile only up to a sane size, as
// compressed text and profiles may inflate to gigabytes. Nothing when the chunks do not follow each
// other to the end, or a needed one has a wrong checksum: libpng would complain on standard error.
std::optional<QByteArray> neededChunks(QByteArray png);
