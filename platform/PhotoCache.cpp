#include "platform/PhotoCache.h"

#include <QScopeGuard>

namespace {

constexpr qint64 kilobyte = 1024;

}    // namespace

PhotoCache::PhotoCache(QString thumbnailFolder, qint64 proxyBudget, qint64 thumbnailBudget)
    : m_disk(std::move(thumbnailFolder)), m_proxies(proxyBudget / kilobyte),
      m_thumbnails(thumbnailBudget / kilobyte)
{
}

std::optional<AcceptedPhoto> PhotoCache::accept(const QString& path)
{
    const QString file = m_disk.fileFor(path);
    auto photo = m_disk.load(file);
    if (!photo) {
        photo = acceptPhoto(path);
        if (!photo)
            return {};
        m_disk.save(file, *photo);
    }
    keep(Key{path, photo->digest, 0}, photo->thumbnail);
    return photo;
}

QImage PhotoCache::cachedThumbnail(const PhotoId& photo) const
{
    return find(keyOf(photo, 0));
}

QImage PhotoCache::thumbnail(const PhotoId& photo)
{
    return findOrMake(keyOf(photo, 0), [&] {
        const auto accepted = accept(photo.path);
        return accepted ? accepted->thumbnail : QImage();
    });
}

QImage PhotoCache::cachedProxy(const PhotoId& photo, PhotoLevel level) const
{
    return find(keyOf(photo, int(level)));
}

QImage PhotoCache::anyProxy(const PhotoId& photo) const
{
    for (const int level : {1, 2, 4, 8, 0}) {
        if (QImage image = find(keyOf(photo, level)); !image.isNull())
            return image;
    }
    return {};
}

QImage PhotoCache::proxy(const PhotoId& photo, PhotoLevel level)
{
    return findOrMake(keyOf(photo, int(level)),
                      [&] { return decodePhoto(photo.path, level).value_or(QImage()); });
}

QCache<PhotoCache::Key, QImage>& PhotoCache::shelf(const Key& key) const
{
    return key.level ? m_proxies : m_thumbnails;
}

QImage PhotoCache::find(const Key& key) const
{
    const std::scoped_lock lock(m_mutex);
    const QImage* const image = shelf(key).object(key);
    return image ? *image : QImage();
}

void PhotoCache::keep(const Key& key, const QImage& image)
{
    const std::scoped_lock lock(m_mutex);
    shelf(key).insert(key, std::make_unique<QImage>(image).release(),
                      qsizetype(image.sizeInBytes() / kilobyte + 1));
}

// Who asks for what another thread is making waits for it; when that thread failed, or the picture
// was too large to keep, the next one tries itself.
QImage PhotoCache::findOrMake(const Key& key, const std::function<QImage()>& make)
{
    {
        std::unique_lock lock(m_mutex);
        m_workDone.wait(lock, [&] { return !m_inWork.contains(key); });
        if (const QImage* const image = shelf(key).object(key))
            return *image;
        m_inWork.insert(key);
    }
    const auto finish = qScopeGuard([&] {
        const std::scoped_lock lock(m_mutex);
        m_inWork.remove(key);
        m_workDone.notify_all();
    });
    QImage image = make();
    if (!image.isNull())
        keep(key, image);
    return image;
}
