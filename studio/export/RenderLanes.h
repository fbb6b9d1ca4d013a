#pragma once

#include "studio/export/RenderedOutput.h"

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

// Items to render, a few at once.
struct RenderOrder {
    PublicationItems items;
    SocialFormat format = SocialFormat::carouselPortrait;
    OutputSize outputSize = exportSizeOf;
    int jobs = 0;    // items rendered at once, at most one a core; 0: one a core
    bool leavesOutUnreadable = false;    // else no more is begun after a photo that cannot be read
    std::function<QString(qsizetype index)> file;    // for the picture of an item
};

// How far the lanes are, and whether they go on; both are called on the interface thread and may be
// empty.
struct RenderWatch {
    std::function<bool()> isStopped;
    std::function<void(qsizetype done)> progressed;
};

struct RenderedItems {
    std::vector<std::optional<RenderedOutput>> outputs;    // one an item; nothing: not rendered
    std::optional<RenderFailure> failure;                  // after which nothing more was begun
    QString failedPhoto;
};

QCoro::Task<RenderedItems> renderItems(RenderOrder order, std::shared_ptr<PhotoCache> photos,
                                       RenderWatch watch);
