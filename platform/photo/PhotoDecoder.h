#pragma once

#include "platform/photo/PhotoLevel.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

struct PhotoInfo {
    QSize size;                // upright, in file pixels
    bool reducible = false;    // a JPEG: a coarser level decodes in less time and memory
    bool operator==(const PhotoInfo&) const = default;
};

// Short side 320 pixels, long side at most 1280; never larger than the photo.
QSize thumbnailSize(QSize photo);

// Decodes a photo, upright, in sRGB, as RGB32 or ARGB32_Premultiplied. Nothing when the file is no
// photo, would need too much memory, or has another digest than the expected one. A format that
// cannot be decoded reduced comes at full size whatever the level; a JPEG too large for the level
// comes at the next one that fits. Not for the interface thread: waits for the disk, the DecodeGate
// and the codec.
std::optional<QImage> decodePhoto(const QString& path, PhotoLevel level,
                                  const QByteArray& expectedDigest = {});

// A decoded picture and its photo's facts.
struct DecodedPhoto {
    PhotoInfo info;
    QImage image;
    // Counts the picture's bytes against the memory budget of all decodings, until it is released.
    // Hold it as long as the picture and no longer: other decodings may be waiting.
    std::shared_ptr<const void> share;
};
// Chooses the level from the photo's facts, so that the file is read only once.
using LevelChoice = std::function<PhotoLevel(const PhotoInfo&)>;
std::optional<DecodedPhoto> decodePhoto(const QString& path, const LevelChoice& level,
                                        const QByteArray& expectedDigest = {});

// The facts in the first bytes of a photo, without decoding it: for a TIFF, a WebP or a HEIC, the
// size may be that before rotation. Nothing when the bytes are not those of a photo. Waits for the
// disk.
std::optional<PhotoInfo> readPhotoInfo(const QString& path);

// The result of accepting a photo into a batch, from one reading and one reduced decoding.
struct AcceptedPhoto {
    PhotoInfo info;
    QByteArray digest;    // BLAKE2b-256 of the file's bytes
    QImage thumbnail;     // upright, in sRGB, area-averaged to thumbnailSize()
};
std::optional<AcceptedPhoto> acceptPhoto(const QString& path);

// Looks at a photo without making a thumbnail. If its header gives the upright size for certain,
// the photo is not decoded, so its decoding may still fail later.
std::optional<AcceptedPhoto> identifyPhoto(const QString& path);
