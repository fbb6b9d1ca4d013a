#pragma once

#include "platform/PhotoLevel.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

struct PhotoInfo {
    QSize size;                // upright, in file pixels
    bool reducible = false;    // a JPEG: decodes at a level for less
    bool operator==(const PhotoInfo&) const = default;
};

// Short side 320 pixels, long side at most 1280; never larger than the photo.
QSize thumbnailSize(QSize photo);

// Pixels upright, in sRGB, RGB32 or ARGB32_Premultiplied; nothing when the file is no photo or
// would need too much memory. What cannot be decoded reduced comes at full size whatever the level,
// and a JPEG too large for the level comes at the next one that fits. Nothing as well when a digest
// is expected and the bytes have another. Any thread but the interface's: it waits for the disk,
// for its share of memory and for the codec.
std::optional<QImage> decodePhoto(const QString& path, PhotoLevel level,
                                  const QByteArray& expectedDigest = {});

// The same for who knows the level only from the photo: one reading serves both.
struct DecodedPhoto {
    PhotoInfo info;
    QImage image;
    // Counts the picture's bytes against what all decodings may take together, until it goes: hold
    // it as long as the picture, and no longer, for others may be waiting.
    std::shared_ptr<const void> share;
};
using LevelChoice = std::function<PhotoLevel(const PhotoInfo&)>;
std::optional<DecodedPhoto> decodePhoto(const QString& path, const LevelChoice& level,
                                        const QByteArray& expectedDigest = {});

// What the first bytes say of a photo, without decoding it: of a TIFF, a WebP or a HEIC the size
// may be that before turning. Nothing when they are not those of a photo. Waits for the disk.
std::optional<PhotoInfo> readPhotoInfo(const QString& path);

// What accepting a photo into a batch yields, from one reading and one reduced decoding.
struct AcceptedPhoto {
    PhotoInfo info;
    QByteArray digest;    // BLAKE2b-256 of the file's bytes
    QImage thumbnail;     // as decodePhoto, area-averaged to thumbnailSize()
};
std::optional<AcceptedPhoto> acceptPhoto(const QString& path);

// The same without a thumbnail. A photo whose size its header tells for certain is not decoded, so
// its decoding may still fail.
std::optional<AcceptedPhoto> identifyPhoto(const QString& path);
