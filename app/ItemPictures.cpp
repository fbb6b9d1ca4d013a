#include "app/ItemPictures.h"

#include "canvas/ExportCanvasRenderer.h"
#include "canvas/ItemPainter.h"
#include "platform/Workers.h"

#include <QCoroFuture>

namespace {

// Tiles drawn at a time: enough to keep the workers busy, few enough for a new wish to be heard
// soon.
constexpr int tilesAtOnce = 3;

struct StageDrawing {
    QImage picture;
    bool hasPhoto = false;
};

PhotoId idOf(const PhotoHandle& photo)
{
    return {photo.path, photo.digest};
}

QImage drawn(const PublicationItem& item, SocialFormat format, QSize pixels, const QImage& photo)
{
    return paintedItem(layOut(item, exportSize(format), designSize(format)), pixels, photo);
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
    startNext();
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
    QFuture<QImage> drawing = runOnWorker([request, photos] {
        return orNothing<QImage>([&] {
            const QImage thumbnail = photos->thumbnail(idOf(request.item.image));
            return drawn(request.item, request.format, request.pixels, thumbnail);
        });
    });
    const QImage picture = co_await drawing;
    if (!self)
        co_return;
    self->m_running.removeOne(request);
    Q_EMIT self->ready(request, picture);
    if (self)
        self->startNext();
}

StagePicture::StagePicture(std::shared_ptr<PhotoCache> photos, QObject* parent)
    : QObject(parent), m_photos(std::move(photos))
{
}

void StagePicture::show(const PublicationItem& item, SocialFormat format, QSize pixels)
{
    if (pixels.isEmpty())
        return;
    const quint64 request = ++*m_latest;
    ++m_running;
    draw(this, request, item, format, pixels, m_photos, m_latest);
}

void StagePicture::clear()
{
    ++*m_latest;
}

QCoro::Task<> StagePicture::draw(QPointer<StagePicture> self, quint64 request, PublicationItem item,
                                 SocialFormat format, QSize pixels,
                                 std::shared_ptr<PhotoCache> photos, Latest latest)
{
    const PhotoId photo = idOf(item.image);
    const QSizeF canvas = exportSize(format);
    const PhotoLevel level = ExportCanvasRenderer::photoLevel(item.image, item.placement, canvas,
                                                              pixels.width() / canvas.width());
    if (photos->cachedProxy(photo, level).isNull()) {
        QFuture<QImage> coarse =
            runOnWorker([item, format, pixels, photos, photo, latest, request] {
                return orNothing<QImage>([&] {
                    return *latest == request ? drawn(item, format, pixels, photos->anyProxy(photo))
                                              : QImage();
                });
            });
        const QImage picture = co_await coarse;
        if (self && *latest == request && !picture.isNull())
            Q_EMIT self->ready(picture);
    }
    QFuture<StageDrawing> exact =
        runOnWorker([item, format, pixels, photos, photo, level, latest, request] {
            return orNothing<StageDrawing>([&] {
                if (*latest != request)
                    return StageDrawing();
                const QImage decoded = photos->proxy(photo, level);
                return StageDrawing{drawn(item, format, pixels, decoded), !decoded.isNull()};
            });
        });
    const StageDrawing drawing = co_await exact;
    if (!self)
        co_return;
    --self->m_running;
    if (*latest != request || drawing.picture.isNull())
        co_return;
    Q_EMIT self->ready(drawing.picture);
    if (self && !drawing.hasPhoto)
        Q_EMIT self->photoMissing(item.filename());
}
