#include "studio/export/RenderLanes.h"

#include "platform/Memory.h"
#include "platform/StagingFolder.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"

#include <QCoroFuture>
#include <QFileInfo>
#include <QScopeGuard>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Rendering = std::variant<RenderedOutput, RenderFailure>;

// State of one order, shared by its lanes. A lane is a coroutine that renders item after item.
struct LaneRun {
    RenderOrder order;
    std::shared_ptr<PhotoCache> photos;
    RenderWatch watch;
    RenderedItems rendered;
    qsizetype next = 0, done = 0;

    bool isOver() const
    {
        return next == order.items.size() || rendered.failure ||
               (watch.isStopped && watch.isStopped());
    }
};
using SharedLaneRun = std::shared_ptr<LaneRun>;

// Returns freed memory to the system after every few pictures, because pictures of many sizes
// fragment it. After every picture would be slower: the next one would have to ask the system for
// memory again.
void releaseHolesAfter(qsizetype index)
{
    constexpr qsizetype pictures = 8;
    if (index % pictures == pictures - 1)
        releaseFreedMemory();
}

Rendering renderedGuarded(const LaneRun& run, const PublicationItem& item, qsizetype index,
                          const QString& file)
{
    const auto tidy = qScopeGuard([index] { releaseHolesAfter(index); });
    try {
        return renderedOutput(item, run.order.format, run.order.outputSize, *run.photos, file);
    } catch (const std::exception&) {
        return RenderFailure::photo;    // out of memory
    }
}

void take(LaneRun& run, qsizetype index, const Rendering& rendering)
{
    if (const auto* output = std::get_if<RenderedOutput>(&rendering)) {
        run.rendered.outputs[std::size_t(index)] = *output;
    } else {
        const auto failure = std::get<RenderFailure>(rendering);
        const bool isLeftOut = failure == RenderFailure::photo && run.order.leavesOutUnreadable;
        if (!isLeftOut && !run.rendered.failure) {
            run.rendered.failure = failure;
            run.rendered.failedPhoto = run.order.items[index].image.path;
        }
    }
    ++run.done;
    if (run.watch.progressed)
        run.watch.progressed(run.done);
}

// Renders one item after the other until the run is over.
QCoro::Task<> renderLane(SharedLaneRun run)
{
    while (!run->isOver()) {
        const qsizetype index = run->next++;
        const PublicationItem item = run->order.items[index];
        const QString file = run->order.file(index);
        QFuture<Rendering> rendering = runOnWorker(
            [run, item, index, file] { return renderedGuarded(*run, item, index, file); });
        const Rendering rendered = co_await rendering;
        take(*run, index, rendered);
    }
}

QCoro::Task<RenderedItems> renderShared(SharedLaneRun run)
{
    const int cores = workers().maxThreadCount();
    const int wanted = run->order.jobs > 0 ? std::min(run->order.jobs, cores) : cores + 1;
    std::vector<QCoro::Task<>> lanes;
    lanes.reserve(std::size_t(wanted));
    for (int i = 0; i < wanted; ++i)
        lanes.push_back(renderLane(run));
    for (QCoro::Task<>& lane : lanes)
        co_await lane;
    const RenderedItems rendered = run->rendered;
    co_return rendered;
}

}    // namespace

QFuture<std::shared_ptr<StagingFolder>> stagingFor(const QString& place)
{
    return runOnWorker([place] {
        releaseFreedMemory();    // memory of the import, about as much as the rendering needs
        return std::make_shared<StagingFolder>(place);
    });
}

QFuture<void> emptied(std::shared_ptr<StagingFolder> staging)
{
    return runOnWorker([staging = std::move(staging)] {
        if (staging)
            staging->remove();
    });
}

QCoro::Task<RenderedItems> renderItems(RenderOrder order, std::shared_ptr<PhotoCache> photos,
                                       RenderWatch watch)
{
    const auto run = std::make_shared<LaneRun>();
    run->rendered.outputs.resize(std::size_t(order.items.size()));
    run->order = std::move(order);
    run->photos = std::move(photos);
    run->watch = std::move(watch);
    return renderShared(run);
}

QString stagingFailure(const QString& place)
{
    const QFileInfo folder(place);
    const bool isForbidden = folder.exists() && !folder.isWritable();
    return u"No se pudo escribir en «%1», donde se preparan las imágenes. %2"_s.arg(
        place, isForbidden ? u"Falta permiso para escribir ahí." : u"¿Queda espacio en el disco?");
}
