#pragma once

#include "platform/photo/PhotoDecoder.h"
#include "platform/photo/ThumbnailStore.h"

#include <QCache>
#include <QSet>

#include <condition_variable>
#include <functional>
#include <mutex>

// Identifies a photo by its path and the digest of its bytes when it was accepted. If `digest` is
// empty, any photo at that path is meant.
struct PhotoId {
    QString path;
    QByteArray digest;
    bool operator==(const PhotoId&) const = default;
};

// The only source of the pixels of photos. Proxies (photos decoded at a level) and thumbnails each
// have a budget in bytes of memory; the least recently used are dropped first. Safe from any
// thread. "Waits" in a comment below means: for the disk, the DecodeGate and the codec, so not for
// the interface thread.
class PhotoCache {
public:
    explicit PhotoCache(QString thumbnailFolder, qint64 proxyBudget = qint64(128) << 20,
                        qint64 thumbnailBudget = qint64(64) << 20);

    // Does the same as acceptPhoto(), but takes the result from the thumbnail on disk if the photo
    // has not changed since. Waits.
    std::optional<AcceptedPhoto> accept(const QString& path);

    // Does the same as identifyPhoto(), but takes the result from what an earlier accept() or
    // identify() stored if the photo has not changed since. Waits.
    std::optional<AcceptedPhoto> identify(const QString& path);

    // Looks again at a photo that was accepted in an earlier run. The digest is empty for a JPEG
    // without a thumbnail on disk, because the whole file would have to be read for it. Returns
    // nothing if the file is gone or no longer a photo. Waits; longest for a format other than JPEG
    // without a thumbnail on disk, because it must be decoded.
    std::optional<AcceptedPhoto> reopen(const QString& path);

    // The digest of the photo that is at `path` now; nothing if it is gone or not a photo.
    // Remembers the digest until the file's size, time or inode changes, so a second call is fast.
    // Waits.
    std::optional<QByteArray> digestOf(const QString& path);

    // The thumbnail from memory or disk, or newly decoded. Null if the photo is gone, cannot be
    // read or has another digest now. Waits.
    QImage thumbnail(const PhotoId& photo);

    // The proxy of this level from memory, or null.
    QImage cachedProxy(const PhotoId& photo, PhotoLevel level) const;
    // The finest proxy in memory, else the thumbnail in memory, else null.
    QImage anyProxy(const PhotoId& photo) const;
    // The proxy from memory, or newly decoded. Null if the photo is gone, cannot be read or has
    // another digest now. If the codec cannot decode the photo at `level`, a picture of more than
    // half the memory budget is averaged down to that level. A picture that exceeds the whole
    // budget is halved until it fits. Waits.
    QImage proxy(const PhotoId& photo, PhotoLevel level);

private:
    struct Key {
        QString path;
        QByteArray digest;
        int level;    // the PhotoLevel of a proxy; 0 for the thumbnail
        bool operator==(const Key&) const = default;
    };
    friend size_t qHash(const Key& key, size_t seed) noexcept
    {
        return qHashMulti(seed, key.path, key.digest, key.level);
    }
    struct Content {
        QString file;    // what ThumbnailStore::fileFor() returned when the digest was read
        QByteArray digest;
    };
    static Key keyOf(const PhotoId& photo, int level) { return {photo.path, photo.digest, level}; }
    QCache<Key, QImage>& shelf(const Key& key) const;
    QImage find(const Key& key) const;
    void keep(const Key& key, const QImage& image);
    void rememberDigest(const QString& path, const Content& content);
    QImage decodedToKeep(const PhotoId& photo, PhotoLevel level) const;
    QImage findOrMake(const Key& key, const std::function<QImage()>& make);

    ThumbnailStore m_disk;
    mutable std::mutex m_mutex;                             // guards the members below
    mutable QCache<Key, QImage> m_proxies, m_thumbnails;    // costs in kilobytes
    QSet<Key> m_inWork;
    QHash<QString, Content> m_digests;    // by path
    std::condition_variable m_workDone;
};
