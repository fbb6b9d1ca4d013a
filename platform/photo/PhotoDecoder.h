#pragma once

#include "platform/photo/PhotoLevel.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

struct PhotoInfo {
    QSize size;                // of the upright photo, in pixels of the file
    bool reducible = false;    // true for a JPEG: a coarser level takes less time and memory
    bool operator==(const PhotoInfo&) const = default;
};

// Returns a size with a short side of 320 pixels and a long side of at most 1280, but never larger
// than the photo.
QSize thumbnailSize(QSize photo);

// Decodes a photo to an upright picture in sRGB, as RGB32 or ARGB32_Premultiplied. Returns nothing
// if the file is not a photo, would need too much memory, or has another digest than
// `expectedDigest`. Formats other than JPEG are always decoded at full size; a JPEG whose picture
// would be too large is decoded at a coarser level. Not for the interface thread: waits for the
// disk, the DecodeGate and the codec.
std::optional<QImage> decodePhoto(const QString& path, PhotoLevel level,
                                  const QByteArray& expectedDigest = {});

// A decoded photo and its PhotoInfo.
struct DecodedPhoto {
    PhotoInfo info;
    QImage image;
    // Counts the bytes of `image` against the memory budget of all decodings until it is released.
    // Hold it exactly as long as `image`, because other decodings may be waiting.
    std::shared_ptr<const void> share;
};
// Chooses the level once the PhotoInfo is known, so that the file is read only once.
using LevelChoice = std::function<PhotoLevel(const PhotoInfo&)>;
std::optional<DecodedPhoto> decodePhoto(const QString& path, const LevelChoice& level,
                                        const QByteArray& expectedDigest = {});

// Reads the PhotoInfo from the first bytes of a file, without decoding the photo. For a TIFF, a
// WebP or a HEIC, the size may be that before rotation. Returns nothing if the file is not a photo.
// Waits for the disk.
std::optional<PhotoInfo> readPhotoInfo(const QString& path);

// What a batch needs to know of a photo. acceptPhoto() reads and decodes the file only once for it.
struct AcceptedPhoto {
    PhotoInfo info;
    QByteArray digest;    // BLAKE2b-256 of the file's bytes
    QImage thumbnail;     // upright, in sRGB, of thumbnailSize(); null if not loaded
};
std::optional<AcceptedPhoto> acceptPhoto(const QString& path);

// Does the same as acceptPhoto(), but without a thumbnail. If the header gives the upright size for
// certain, the photo is not decoded, and a later decoding may still fail.
std::optional<AcceptedPhoto> identifyPhoto(const QString& path);
