#pragma once

#include "platform/photo/PhotoDecoder.h"
#include "platform/photo/ThumbnailStore.h"

#include <QCache>
#include <QSet>

#include <condition_variable>
#include <functional>
#include <mutex>

// A photo in the cache: its path, and the digest of its bytes when it was accepted. Without a
// digest, the photo is whatever lies at the path.
struct PhotoId {
    QString path;
    QByteArray digest;
    bool operator==(const PhotoId&) const = default;
};

// The only source of the pixels of photos. Proxies (photos decoded at a level) and thumbnails each
// have a budget in bytes of memory; the least recently used go first. Safe from any thread. "Waits"
// means for the disk, memory and the codec: not on the interface thread.
class PhotoCache {
public:
    explicit PhotoCache(QString thumbnailFolder, qint64 proxyBudget = qint64(128) << 20,
                        qint64 thumbnailBudget = qint64(64) << 20);

    // Accepts a photo as acceptPhoto() does, or reads its thumbnail on disk if the file has not
    // changed since. Waits.
    std::optional<AcceptedPhoto> accept(const QString& path);

    // Looks at a photo as identifyPhoto() does, or reads the facts that an earlier accept() or
    // identify() stored if the file has not changed since. Waits.
    std::optional<AcceptedPhoto> identify(const QString& path);

    // The facts of a photo accepted in an earlier run. Its digest is empty when only reading the
    // whole file would give it. Nothing when the file is gone or is no photo any more. Waits;
    // longest for a format that must be decoded to be known.
    std::optional<AcceptedPhoto> reopen(const QString& path);

    // The digest of the file at `path` now; nothing when it is gone or no photo. It is remembered
    // by size, time and inode, so a second call costs one look at the folder. Waits.
    std::optional<QByteArray> contentOf(const QString& path);

    // The thumbnail from memory, disk or decoding; null when the photo is gone, unreadable or has
    // another digest by now. Waits.
    QImage thumbnail(const PhotoId& photo);

    QImage cachedProxy(const PhotoId& photo, PhotoLevel level) const;    // of this level, or null
    QImage anyProxy(const PhotoId& photo) const;    // the finest in memory, else the thumbnail
    // The proxy from memory or decoding; null when the photo is gone, unreadable or has another
    // digest. One larger than half of the memory budget is averaged down to `level` if the codec
    // could not decode it reduced, and further while it exceeds the whole budget. Waits.
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
        QString file;    // ThumbnailStore::fileFor() when the digest was read
        QByteArray digest;
    };
    static Key keyOf(const PhotoId& photo, int level) { return {photo.path, photo.digest, level}; }
    QCache<Key, QImage>& shelf(const Key& key) const;
    QImage find(const Key& key) const;
    void keep(const Key& key, const QImage& image);
    void rememberContent(const QString& path, const Content& content);
    QImage decodedToKeep(const PhotoId& photo, PhotoLevel level) const;
    QImage findOrMake(const Key& key, const std::function<QImage()>& make);

    ThumbnailStore m_disk;
    mutable std::mutex m_mutex;                             // guards the members below
    mutable QCache<Key, QImage> m_proxies, m_thumbnails;    // costs in kilobytes
    QSet<Key> m_inWork;
    QHash<QString, Content> m_contents;    // by path
    std::condition_variable m_workDone;
};
