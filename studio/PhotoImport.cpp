#include "studio/PhotoImport.h"

#include "model/PlainText.h"
#include "platform/Workers.h"
#include "platform/photo/ImageAccess.h"
#include "studio/PhotoFolder.h"

#include <QCoroFuture>

#include <vector>

namespace {

using Accepted = std::optional<PublicationItem>;

Accepted itemOf(const QUrl& url, PhotoCache& cache, PhotoImport::Look look)
{
    const auto photo = look == PhotoImport::Look::picture
                           ? ImageAccess::image(url, std::nullopt, cache)
                           : ImageAccess::identified(url, std::nullopt, cache);
    if (!photo)
        return std::nullopt;
    const PhotoHandle handle{url.toLocalFile(), photo->info.size, photo->info.reducible,
                             photo->digest};
    return PublicationItem::make(url, handle);
}

Accepted acceptedItem(const QUrl& url, PhotoCache& cache, PhotoImport::Look look,
                      const PhotoImport::Control& control)
{
    if (control.stop)
        return std::nullopt;
    try {
        return itemOf(url, cache, look);
    } catch (const std::exception&) {
        return std::nullopt;    // out of memory: treated like a photo that cannot be read
    }
}

// A file name as a single line, without characters that change the writing direction.
QString lineOf(const QString& name)
{
    QString line = plainText(name).replace(u'\n', u' ');
    line.removeIf(turnsDirection);
    return line;
}

// State of one import, shared by its lanes. A lane is a coroutine that reads photo after photo.
struct ImportRun {
    QList<QUrl> photos;
    std::shared_ptr<PhotoCache> cache;
    std::shared_ptr<PhotoImport::Control> control;
    PhotoImport::Look look = PhotoImport::Look::picture;
    std::vector<Accepted> results;    // by index in `photos`
    std::vector<bool> isLooked;
    qsizetype next = 0;    // index of the first photo that no lane has taken
    qsizetype told = 0;    // photos before this index are in `progress` if accepted
    PhotoImport::Progress progress;

    // Stores the result for one photo. Photos finish in any order, but `progress` lists them in the
    // order of the files, so that pictures already shown do not move.
    void take(qsizetype index, const Accepted& item)
    {
        results[std::size_t(index)] = item;
        isLooked[std::size_t(index)] = true;
        ++progress.looked;
        for (; told < photos.size() && isLooked[std::size_t(told)]; ++told) {
            if (const Accepted& accepted = results[std::size_t(told)])
                progress.accepted.append(*accepted);
        }
        if (control->progressed)
            control->progressed(progress);
    }

    QStringList unreadable() const
    {
        QStringList names;
        for (qsizetype i = 0; i < photos.size(); ++i) {
            if (!results[std::size_t(i)])
                names.append(photos[i].fileName());
        }
        return names;
    }
};

// Reads one photo after the other until none is left or the import is stopped.
QCoro::Task<> lane(std::shared_ptr<ImportRun> run)
{
    while (run->next < run->photos.size() && !run->control->stop) {
        const qsizetype index = run->next++;
        const QUrl url = run->photos[index];
        QFuture<Accepted> looking = runOnWorker(
            [url, run] { return acceptedItem(url, *run->cache, run->look, *run->control); });
        const Accepted item = co_await looking;
        if (!run->control->stop)
            run->take(index, item);
    }
}

}    // namespace

QCoro::Task<std::optional<PhotoImport::Imported>>
PhotoImport::importPhotos(QList<QUrl> filesAndFolders, std::shared_ptr<PhotoCache> cache,
                          std::shared_ptr<Control> control, Look look)
{
    // A separate variable, because GCC 12 destroys a lambda in a co_await expression twice.
    QFuture<FoundPhotos> listing =
        runOnWorker([filesAndFolders] { return photosIn(filesAndFolders); });
    auto run = std::make_shared<ImportRun>();
    const FoundPhotos found = co_await listing;
    run->photos = found.photos;
    run->cache = cache;
    run->control = control;
    run->look = look;
    run->results.resize(std::size_t(run->photos.size()));
    run->isLooked.resize(std::size_t(run->photos.size()));
    run->progress.total = run->photos.size();

    const int laneCount = 2 * workers().maxThreadCount();
    std::vector<QCoro::Task<>> lanes;
    lanes.reserve(std::size_t(laneCount));
    for (int i = 0; i < laneCount; ++i)
        lanes.push_back(lane(run));
    for (QCoro::Task<>& each : lanes)
        co_await each;
    if (control->stop)
        co_return std::nullopt;
    QStringList unreadable = found.unreachable + run->unreadable();
    for (QString& name : unreadable)
        name = lineOf(name);
    const Imported imported{run->progress.accepted, unreadable};
    co_return imported;
}
