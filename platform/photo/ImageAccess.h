#pragma once

#include "platform/photo/PhotoCache.h"

#include <QScopeGuard>
#include <QUrl>

#include <functional>
#include <optional>
#include <utility>

// Access to photos that the user chose in an earlier run. Some systems give out bookmarks for that
// and require access to be started and stopped around each use. Here a path is enough: the calls
// exist so that callers look alike on all systems.
namespace ImageAccess {

// Starts and stops access on this system. `start` returns false when there was nothing to start.
struct SecurityScope {
    std::function<bool(const QUrl&)> start = [](const QUrl&) { return false; };
    std::function<void(const QUrl&)> stop = [](const QUrl&) {};
};

// Runs `work` between start() and stop() of `scope`, and passes on its result or its exception.
// When start() returns false, `work` runs all the same and stop() is not called.
template <typename Work>
decltype(auto) withSecurityScope(const QUrl& url, Work&& work, const SecurityScope& scope = {})
{
    const bool started = scope.start(url);
    const auto stop = qScopeGuard([&] {
        if (started)
            scope.stop(url);
    });
    return std::forward<Work>(work)();
}

std::optional<QByteArray> bookmarkData(const QUrl& url);

// The place the bookmark leads to now; `fallback` without a bookmark or when it leads nowhere.
QUrl resolvedURL(const QUrl& fallback, const std::optional<QByteArray>& bookmarkData);

// Accepts the photo into `cache`, through its bookmark; nothing when it cannot be read. Waits for
// the disk and the codec.
std::optional<AcceptedPhoto> image(const QUrl& url, const std::optional<QByteArray>& bookmarkData,
                                   PhotoCache& cache);

// Calls PhotoCache::identify() for a photo that comes into the batch, through its bookmark. Waits
// for the disk.
std::optional<AcceptedPhoto>
identified(const QUrl& url, const std::optional<QByteArray>& bookmarkData, PhotoCache& cache);

// Calls PhotoCache::reopen() for a photo of an earlier run, through its bookmark. Waits for the
// disk.
std::optional<AcceptedPhoto>
reopened(const QUrl& url, const std::optional<QByteArray>& bookmarkData, PhotoCache& cache);

}    // namespace ImageAccess
