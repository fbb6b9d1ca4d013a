#pragma once

#include "platform/PhotoHeader.h"

// What is done to the bytes of a photo before a codec sees them.

// The bytes of a JPEG whose announced size is rounded up to whole pixels of the level. Qt takes its
// reduction from the ratio of the two sizes and decodes 2560x3837 at 5/8 when 1280x1919 is asked
// for. Rounded to 2560x3838 the ratio is 2, nothing is scaled afterwards, and the added pixels are
// in the file already, which stores blocks of 8x8.
QByteArray paddedToLevel(const PhotoHeader& header, QByteArray jpeg, PhotoLevel level);

// The bytes of a JPEG with what is neither picture nor colour renamed to a kind of segment that
// readers pass over: Qt keeps comments and metadata several times over.
QByteArray withoutMetadata(QByteArray jpeg);

// Scans of the picture in a JPEG: each runs over all of it, so a few kilobytes of them would hold a
// codec for minutes.
int scanCount(const QByteArray& jpeg);

// The chunks of a PNG that its picture needs, the colour profile only when it is of a sane size:
// compressed text and profiles may inflate to gigabytes. Nothing when the chunks do not follow each
// other to the end with the right checksums; libpng writes to standard error what it dislikes
// there.
std::optional<QByteArray> neededChunks(QByteArray png);
