#pragma once

#include "studio/export/RenderedOutput.h"

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

// A request to render items, several at once.
struct RenderOrder {
    PublicationItems items;
    SocialFormat format = SocialFormat::carouselPortrait;
    OutputSize outputSize = exportSizeOf;
    int jobs = 0;    // items rendered at once, at most one a core; 0: one a core
    // True: skips an item whose photo cannot be rendered. False: starts nothing after it.
    bool leavesOutUnreadable = false;
    std::function<QString(qsizetype index)> file;    // path for the picture of an item
};

// Callbacks of a rendering, on the interface thread. Both may be empty.
struct RenderWatch {
    std::function<bool()> isStopped;
    std::function<void(qsizetype done)> progressed;
};

struct RenderedItems {
    std::vector<std::optional<RenderedOutput>> outputs;    // one an item; empty: not rendered
    // Reason for the first item that could not be rendered; none while those are skipped.
    std::optional<RenderFailure> failure;
    QString failedPhoto;
};

QCoro::Task<RenderedItems> renderItems(RenderOrder order, std::shared_ptr<PhotoCache> photos,
                                       RenderWatch watch);
