#include "app/batch/TilePictures.h"

#include "canvas/ExportCanvasRenderer.h"
#include "platform/Workers.h"

#include <QCoroFuture>

namespace {

// How many pictures are drawn at a time: enough to keep the workers busy, few enough for a new
// want() to take effect soon.
constexpr int tilesAtOnce = 3;

struct TileDrawing {
    JudgedPicture judged;
    PhotoState photo = PhotoState::shown;
};

QImage photoFor(const TileRequest& request, PhotoCache& photos, PhotoDetail detail)
{
    const PhotoHandle& photo = request.item.image;
    const PhotoId id{photo.path, photo.digest};
    if (detail == PhotoDetail::thumbnail)
        return photos.thumbnail(id);
    const QSizeF canvas = exportSize(request.format);
    const double shown = request.pixels.width() / canvas.width();
    return photos.proxy(
        id, ExportCanvasRenderer::photoLevel(photo, request.item.placement, canvas, shown));
}

TileDrawing drawn(const TileRequest& request, PhotoCache& photos, PhotoDetail detail)
{
    const QImage photo = photoFor(request, photos, detail);
    return {judgedItem(layOut(request.item, exportSize(request.format), designSize(request.format)),
                       request.pixels, photo),
            photo.isNull() ? PhotoState::missing : PhotoState::shown};
}

}    // namespace

TilePictures::TilePictures(std::shared_ptr<PhotoCache> photos, QObject* parent, PhotoDetail detail)
    : QObject(parent), m_photos(std::move(photos)), m_detail(detail)
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
    // Starts in the next turn of the event loop: another want() in this turn may drop items that a
    // fast worker would already have drawn and reported.
    QMetaObject::invokeMethod(this, &TilePictures::startNext, Qt::QueuedConnection);
}

void TilePictures::startNext()
{
    while (m_running.size() < tilesAtOnce && !m_wanted.isEmpty()) {
        const TileRequest request = m_wanted.takeFirst();
        m_running.append(request);
        draw(this, request, m_photos, m_detail);
    }
}

QCoro::Task<> TilePictures::draw(QPointer<TilePictures> self, TileRequest request,
                                 std::shared_ptr<PhotoCache> photos, PhotoDetail detail)
{
    QFuture<TileDrawing> drawing =
        tryOnWorker([request, photos, detail] { return drawn(request, *photos, detail); });
    const TileDrawing tile = co_await drawing;
    if (!self)
        co_return;
    self->m_running.removeOne(request);
    Q_EMIT self->ready(request, tile.judged.picture, tile.photo, tile.judged.warnings);
    if (self)
        self->startNext();
}
