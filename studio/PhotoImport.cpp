#include "studio/PhotoImport.h"

#include "platform/ImageAccess.h"
#include "platform/Workers.h"
#include "studio/PhotoFolder.h"

#include <QCoroFuture>

#include <deque>

namespace {

using Accepted = std::optional<PublicationItem>;

Accepted acceptedItem(const QUrl& url, PhotoCache& cache, const PhotoImport::Control& control)
{
    if (control.stop)
        return std::nullopt;
    const auto photo = ImageAccess::image(url, std::nullopt, cache);
    if (!photo)
        return std::nullopt;
    const PhotoHandle handle{url.toLocalFile(), photo->info.size, photo->info.reducible,
                             photo->digest};
    return PublicationItem::make(url, handle);
}

}    // namespace

QCoro::Task<std::optional<QList<PublicationItem>>>
PhotoImport::importPhotos(QList<QUrl> filesAndFolders, std::shared_ptr<PhotoCache> cache,
                          std::shared_ptr<Control> control)
{
    // Named before they are awaited: the compiler destroys twice what is made inside an awaiting
    // expression.
    QFuture<QList<QUrl>> listing =
        runOnWorker([filesAndFolders] { return photosIn(filesAndFolders); });
    const QList<QUrl> photos = co_await listing;

    Progress progress{.looked = 0, .total = photos.size(), .accepted = {}};
    const auto atOnce = std::size_t(2 * workers().maxThreadCount());
    std::deque<QFuture<Accepted>> waiting;
    qsizetype next = 0;
    while (progress.looked < photos.size()) {
        while (next < photos.size() && waiting.size() < atOnce) {
            const QUrl url = photos[next++];
            waiting.push_back(
                runOnWorker([url, cache, control] { return acceptedItem(url, *cache, *control); }));
        }
        QFuture<Accepted> first = waiting.front();
        waiting.pop_front();
        const Accepted item = co_await first;
        if (control->stop)
            co_return std::nullopt;
        ++progress.looked;
        if (item)
            progress.accepted.append(*item);
        if (control->progressed)
            control->progressed(progress);
    }
    co_return progress.accepted;
}
