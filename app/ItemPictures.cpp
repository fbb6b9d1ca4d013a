#include "app/ItemPictures.h"

#include "canvas/ExportCanvasRenderer.h"
#include "canvas/ImagePlacementGeometry.h"
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

// The level at which the photo covers what a picture of this width shows of it.
PhotoLevel levelFor(const PublicationItem& item, SocialFormat format, QSize pixels)
{
    const QSizeF canvas = exportSize(format);
    const QRectF place = ImagePlacementGeometry::imageRect(item.image.size, canvas, item.placement);
    return ExportCanvasRenderer::photoLevel(item.image,
                                            place.size() * (pixels.width() / canvas.width()));
}

}    // namespace

TilePictures::TilePictures(std::shared_ptr<PhotoCache> photos, QObject* parent)
    : QObject(parent), m_photos(std::move(photos))
{
}

void TilePictures::want(const QList<PublicationItem>& items, SocialFormat format, QSize pixels)
{
    m_wanted = items;
    m_format = format;
    m_pixels = pixels;
    startNext();
}

void TilePictures::startNext()
{
    while (m_running < tilesAtOnce && !m_wanted.isEmpty()) {
        ++m_running;
        draw(this, m_wanted.takeFirst(), m_format, m_pixels, m_photos);
    }
}

QCoro::Task<> TilePictures::draw(QPointer<TilePictures> self, PublicationItem item,
                                 SocialFormat format, QSize pixels,
                                 std::shared_ptr<PhotoCache> photos)
{
    QFuture<QImage> drawing = runOnWorker([item, format, pixels, photos] {
        return drawn(item, format, pixels, photos->thumbnail(idOf(item.image)));
    });
    const QImage picture = co_await drawing;
    if (!self)
        co_return;
    --self->m_running;
    Q_EMIT self->ready(item.id, picture);
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
    const PhotoLevel level = levelFor(item, format, pixels);
    if (photos->cachedProxy(photo, level).isNull()) {
        QFuture<QImage> coarse =
            runOnWorker([item, format, pixels, photos, photo, latest, request] {
                return *latest == request ? drawn(item, format, pixels, photos->anyProxy(photo))
                                          : QImage();
            });
        const QImage picture = co_await coarse;
        if (self && *latest == request && !picture.isNull())
            Q_EMIT self->ready(picture);
    }
    QFuture<StageDrawing> exact = runOnWorker([item, format, pixels, photos, photo, level, latest,
                                               request] {
        if (*latest != request)
            return StageDrawing();
        const QImage pixelsOfPhoto = photos->proxy(photo, level);
        return StageDrawing{drawn(item, format, pixels, pixelsOfPhoto), !pixelsOfPhoto.isNull()};
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
