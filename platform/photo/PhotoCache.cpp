#include "platform/photo/PhotoCache.h"

#include "platform/photo/AreaAverage.h"

#include <QFileInfo>
#include <QScopeGuard>

namespace {

constexpr qint64 kilobyte = 1024;

// Size in kilobytes of a picture with 32 bits per pixel.
qsizetype costOf(QSize size)
{
    return qsizetype(qint64(size.width()) * size.height() * 4 / kilobyte + 1);
}

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
    rememberDigest(path, {file, photo->digest});
    return photo;
}

std::optional<AcceptedPhoto> PhotoCache::identify(const QString& path)
{
    const QString file = m_disk.fileFor(path);
    auto photo = m_disk.loadFacts(file);
    if (!photo) {
        photo = identifyPhoto(path);
        if (!photo)
            return {};
        m_disk.save(file, *photo);
    }
    rememberDigest(path, {file, photo->digest});
    return photo;
}

std::optional<QByteArray> PhotoCache::digestOf(const QString& path)
{
    const QString file = m_disk.fileFor(path);
    if (file.isEmpty() || !QFileInfo(path).isReadable())
        return {};
    {
        const std::scoped_lock lock(m_mutex);
        const auto known = m_digests.constFind(path);
        if (known != m_digests.cend() && known->file == file)
            return known->digest;
    }
    if (const auto known = m_disk.loadFacts(file)) {
        rememberDigest(path, {file, known->digest});
        return known->digest;
    }
    const auto accepted = accept(path);
    return accepted ? std::optional(accepted->digest) : std::nullopt;
}

void PhotoCache::rememberDigest(const QString& path, const Content& content)
{
    constexpr qsizetype mostRemembered = 20'000;
    const std::scoped_lock lock(m_mutex);
    if (m_digests.size() >= mostRemembered)
        m_digests.clear();
    m_digests.insert(path, content);
}

std::optional<AcceptedPhoto> PhotoCache::reopen(const QString& path)
{
    const auto info = readPhotoInfo(path);
    if (!info)
        return {};
    if (auto known = m_disk.loadFacts(m_disk.fileFor(path)))
        return known;
    if (!info->reducible) {
        // For formats other than JPEG, only decoding shows the upright size.
        if (auto accepted = accept(path))
            return accepted;
    }
    return AcceptedPhoto{*info, {}, {}};
}

QImage PhotoCache::thumbnail(const PhotoId& photo)
{
    return findOrMake(keyOf(photo, 0), [&] {
        const auto accepted = accept(photo.path);
        const bool isSame =
            accepted && (photo.digest.isEmpty() || accepted->digest == photo.digest);
        return isSame ? accepted->thumbnail : QImage();
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
    return findOrMake(keyOf(photo, int(level)), [&] { return decodedToKeep(photo, level); });
}

QImage PhotoCache::decodedToKeep(const PhotoId& photo, PhotoLevel level) const
{
    const auto decoded = decodePhoto(
        photo.path, [level](const PhotoInfo&) { return level; }, photo.digest);
    if (!decoded)
        return {};
    QSize kept = decoded->image.size();
    if (costOf(kept) > m_proxies.maxCost() / 2)
        kept = kept.boundedTo(sizeAtLevel(decoded->info.size, level));
    while (costOf(kept) > m_proxies.maxCost() && kept != QSize(1, 1))
        kept = sizeAtLevel(kept, PhotoLevel::half);
    return kept == decoded->image.size() ? decoded->image : areaAveraged(decoded->image, kept);
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
    shelf(key).insert(key, std::make_unique<QImage>(image).release(), costOf(image.size()));
}

// Returns the picture for `key` from memory, or calls `make` and stores the result. If another
// thread is already making that picture, waits for it; if that thread fails, calls `make` here.
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
