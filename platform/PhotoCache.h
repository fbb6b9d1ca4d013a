#pragma once

#include "platform/PhotoDecoder.h"
#include "platform/ThumbnailStore.h"

#include <QCache>
#include <QSet>

#include <condition_variable>
#include <functional>
#include <mutex>

// A photo as the cache knows it: where it lies and what was in it when it was accepted; without a
// digest, whatever lies there.
struct PhotoId {
    QString path;
    QByteArray digest;
    bool operator==(const PhotoId&) const = default;
};

// The one place pixels of photos come from. Proxies and thumbnails each have a budget in memory,
// and what was used longest ago goes first. Safe from any thread; what waits is not for the
// interface's.
class PhotoCache {
public:
    explicit PhotoCache(QString thumbnailFolder, qint64 proxyBudget = qint64(128) << 20,
                        qint64 thumbnailBudget = qint64(64) << 20);

    // As acceptPhoto(); a thumbnail on disk of the very same file answers without decoding. Waits.
    std::optional<AcceptedPhoto> accept(const QString& path);

    // As identifyPhoto(), or what was stored when the very same file was accepted. Waits.
    std::optional<AcceptedPhoto> identify(const QString& path);

    // A photo that was accepted in an earlier run: what is known of it, with the digest where that
    // is to be had without reading all of the file. Nothing when it is gone or no photo any more.
    // Waits, mostly for little.
    std::optional<AcceptedPhoto> reopen(const QString& path);

    // The digest of what lies there now; nothing when that is gone or no photo that can be read.
    // Remembered by size, time and inode: asked again it costs a look at the folder. Waits.
    std::optional<QByteArray> contentOf(const QString& path);

    // Memory, disk or decoding; null when the photo is gone, unreadable or another one by now.
    // Waits.
    QImage thumbnail(const PhotoId& photo);

    QImage cachedProxy(const PhotoId& photo, PhotoLevel level) const;    // that level or null
    QImage anyProxy(const PhotoId& photo) const;    // the finest in memory, else the thumbnail
    // Memory or decoding; null as the thumbnail. Waits. What would fill the memory comes smaller:
    // averaged to the level where the codec cannot decode reduced, and beyond it when it would not
    // fit at all.
    QImage proxy(const PhotoId& photo, PhotoLevel level);

private:
    struct Key {
        QString path;
        QByteArray digest;
        int level;    // of a proxy; 0 for the thumbnail
        bool operator==(const Key&) const = default;
    };
    friend size_t qHash(const Key& key, size_t seed) noexcept
    {
        return qHashMulti(seed, key.path, key.digest, key.level);
    }
    struct Content {
        QString file;    // of its thumbnail: another for another size, time or inode
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
    mutable std::mutex m_mutex;                             // what follows
    mutable QCache<Key, QImage> m_proxies, m_thumbnails;    // costs in kilobytes
    QSet<Key> m_inWork;
    QHash<QString, Content> m_contents;    // by path
    std::condition_variable m_workDone;
};
