#pragma once

#include "studio/export/RenderedOutput.h"

#include <QCoroTask>
#include <QFuture>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class StagingFolder;

// A request to render items, several at once.
struct RenderOrder {
    PublicationItems items;
    SocialFormat format = SocialFormat::carouselPortrait;
    OutputSize outputSize = exportSizeOf;
    int jobs = 0;    // number of items rendered at once, at most one per core; 0: one per core
    // True: skips items whose photo cannot be rendered. False: such an item ends the rendering.
    bool leavesOutUnreadable = false;
    std::function<QString(qsizetype index)> file;    // where to write the picture of an item
};

// Callbacks of renderItems(), called on the interface thread. Both may be empty.
struct RenderWatch {
    std::function<bool()> isStopped;
    std::function<void(qsizetype done)> progressed;
};

struct RenderedItems {
    std::vector<std::optional<RenderedOutput>> outputs;    // one per item; empty: not rendered
    // Why an item could not be rendered; empty if none failed. Skipped items do not count.
    std::optional<RenderFailure> failure;
    QString failedPhoto;
};

// Makes a folder for rendered pictures on a worker.
QFuture<std::shared_ptr<StagingFolder>> stagingFor(const QString& place);
// Deletes the folder on a worker, because deleting a thousand files takes a while.
QFuture<void> emptied(std::shared_ptr<StagingFolder> staging);

QCoro::Task<RenderedItems> renderItems(RenderOrder order, std::shared_ptr<PhotoCache> photos,
                                       RenderWatch watch);

// What the user reads when the pictures cannot be written to the staging folder at `place`.
QString stagingFailure(const QString& place);
