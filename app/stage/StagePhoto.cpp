#include "app/stage/StagePhoto.h"

#include "canvas/ExportCanvasRenderer.h"
#include "platform/Workers.h"

#include <QCoroFuture>

namespace {

PhotoId idOf(const PhotoHandle& photo)
{
    return {photo.path, photo.digest};
}

}    // namespace

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
        QFuture<QImage> coarse = tryOnWorker([photos, photo, latest, request] {
            return *latest == request ? photos->thumbnail(photo) : QImage();
        });
        const QImage thumbnail = co_await coarse;
        if (self && *latest == request && !thumbnail.isNull())
            Q_EMIT self->ready(thumbnail);
    }
    QFuture<QImage> exact = tryOnWorker([photos, photo, wish, latest, request] {
        return *latest == request ? photos->proxy(photo, wish.level) : QImage();
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
