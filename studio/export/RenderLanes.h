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
    // An item whose photo cannot be rendered is left out; else nothing is begun after it.
    bool leavesOutUnreadable = false;
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
    // Of the first item that could not be rendered, unless it is left out; nothing more was begun
    // after it.
    std::optional<RenderFailure> failure;
    QString failedPhoto;
};

QCoro::Task<RenderedItems> renderItems(RenderOrder order, std::shared_ptr<PhotoCache> photos,
                                       RenderWatch watch);
