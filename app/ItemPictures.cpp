#include "app/ItemPictures.h"

#include "canvas/ExportCanvasRenderer.h"
#include "platform/Workers.h"

#include <QCoroFuture>

namespace {

// Tiles drawn at a time: enough to keep the workers busy, few enough for a new wish to be heard
// soon.
constexpr int tilesAtOnce = 3;

struct TileDrawing {
    JudgedPicture judged;
    PhotoState photo = PhotoState::shown;
};

PhotoId idOf(const PhotoHandle& photo)
{
    return {photo.path, photo.digest};
}

TileDrawing drawn(const TileRequest& request, PhotoCache& photos)
{
    const PublicationItem& item = request.item;
    const QImage thumbnail = photos.thumbnail(idOf(item.image));
    return {judgedItem(layOut(item, exportSize(request.format), designSize(request.format)),
                       request.pixels, thumbnail),
            thumbnail.isNull() ? PhotoState::missing : PhotoState::shown};
}

// Nothing when memory is short: the panel goes on showing what it has.
template <typename Result, typename Draw>
Result orNothing(Draw draw)
{
    try {
        return draw();
    } catch (const std::exception&) {
        return Result();
    }
}

}    // namespace

TilePictures::TilePictures(std::shared_ptr<PhotoCache> photos, QObject* parent)
    : QObject(parent), m_photos(std::move(photos))
{
}

void TilePictures::want(const QList<PublicationItem>& items, SocialFormat format, QSize pixels)
{
    m_wanted.clear();
    for (const PublicationItem& item : items) {
        const TileRequest request{item, format, pixels};
        if (!m_running.contains(request))
            m_wanted.append(request);
    }
    // Not at once: a worker may be done before its drawing is awaited, and what a later wish of the
    // same turn no longer names would be drawn and told.
    QMetaObject::invokeMethod(this, &TilePictures::startNext, Qt::QueuedConnection);
}

void TilePictures::startNext()
{
    while (m_running.size() < tilesAtOnce && !m_wanted.isEmpty()) {
        const TileRequest request = m_wanted.takeFirst();
        m_running.append(request);
        draw(this, request, m_photos);
    }
}

QCoro::Task<> TilePictures::draw(QPointer<TilePictures> self, TileRequest request,
                                 std::shared_ptr<PhotoCache> photos)
{
    QFuture<TileDrawing> drawing = runOnWorker([request, photos] {
        return orNothing<TileDrawing>([&] { return drawn(request, *photos); });
    });
    const TileDrawing tile = co_await drawing;
    if (!self)
        co_return;
    self->m_running.removeOne(request);
    Q_EMIT self->ready(request, tile.judged.picture, tile.photo, tile.judged.warnings);
    if (self)
        self->startNext();
}

StagePhoto::StagePhoto(std::shared_ptr<PhotoCache> photos, QObject* parent)
    : QObject(parent), m_photos(std::move(photos))
{
}

void StagePhoto::show(const PublicationItem& item, SocialFormat format, QSize pixels)
{
    if (pixels.isEmpty())
        return;
    const QSizeF canvas = exportSize(format);
    const Wish wish{item.image, ExportCanvasRenderer::photoLevel(item.image, item.placement, canvas,
                                                                 pixels.width() / canvas.width())};
    if (m_wish == wish)
        return;
    const bool other = !m_wish || m_wish->photo != wish.photo;
    m_wish = wish;
    const quint64 request = ++*m_latest;
    const PhotoId photo = idOf(item.image);
    if (const QImage exact = m_photos->cachedProxy(photo, wish.level); !exact.isNull()) {
        Q_EMIT ready(exact);
        return;
    }
    if (const QImage coarse = other ? m_photos->anyProxy(photo) : QImage(); !coarse.isNull())
        Q_EMIT ready(coarse);
    ++m_running;
    load(this, request, wish, item.filename(), m_photos, m_latest);
}

void StagePhoto::clear()
{
    ++*m_latest;
    m_wish.reset();
}

QCoro::Task<> StagePhoto::load(QPointer<StagePhoto> self, quint64 request, Wish wish, QString name,
                               std::shared_ptr<PhotoCache> photos, Latest latest)
{
    const PhotoId photo = idOf(wish.photo);
    if (photos->anyProxy(photo).isNull()) {
        QFuture<QImage> coarse = runOnWorker([photos, photo, latest, request] {
            return orNothing<QImage>(
                [&] { return *latest == request ? photos->thumbnail(photo) : QImage(); });
        });
        const QImage thumbnail = co_await coarse;
        if (self && *latest == request && !thumbnail.isNull())
            Q_EMIT self->ready(thumbnail);
    }
    QFuture<QImage> exact = runOnWorker([photos, photo, wish, latest, request] {
        return orNothing<QImage>(
            [&] { return *latest == request ? photos->proxy(photo, wish.level) : QImage(); });
    });
    const QImage decoded = co_await exact;
    if (!self)
        co_return;
    --self->m_running;
    if (*latest != request)
        co_return;
    Q_EMIT self->ready(decoded);
    if (!self)
        co_return;
    if (decoded.isNull())
        Q_EMIT self->photoMissing(name);
    else
        Q_EMIT self->photoRead();
}
