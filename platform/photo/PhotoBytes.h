#pragma once

#include "platform/photo/PhotoHeader.h"

// These functions change or check the bytes of a photo before a codec sees them.

// Rounds the size in the header of a JPEG up to a multiple of the step of `level`. Qt chooses the
// codec's reduction from the ratio of that size to the requested one: it decodes 2560x3837 at 5/8
// if 1280x1919 is requested, and then scales the picture. With 2560x3838 the ratio is exactly 2,
// and nothing has to be scaled. The file contains the added pixels, because JPEG stores blocks of
// 8x8.
QByteArray paddedToLevel(const PhotoHeader& header, QByteArray jpeg, PhotoLevel level);

// Makes readers skip the segments of a JPEG that contain neither picture nor colour profile, by
// giving them the marker APP15: Qt would hold several copies of comments and metadata in memory.
QByteArray withoutMetadata(QByteArray jpeg);

// Number of scans in a JPEG. Each covers the whole picture, so a few kilobytes of scans could
// occupy a codec for minutes.
int scanCount(const QByteArray& jpeg);

// Returns a PNG with only the chunks that its picture needs, because compressed texts and profiles
// may inflate to gigabytes. The colour profile is left out if it is too large. Returns nothing if
// the file is incomplete or a critical chunk has a wrong checksum, because libpng would write a
// warning to standard error.
std::optional<QByteArray> neededChunks(QByteArray png);
