#pragma once

#include "platform/photo/PhotoCache.h"

#include <QScopeGuard>
#include <QUrl>

#include <functional>
#include <optional>
#include <utility>

// Access to photos that the user chose in an earlier run. On some systems, a program needs a
// bookmark for that, and must start and stop the access around each use. In this implementation a
// path is enough; the functions exist so that callers look the same on all systems.
namespace ImageAccess {

// The functions that start and stop the access to a file. `start` returns false if there was
// nothing to start.
struct SecurityScope {
    std::function<bool(const QUrl&)> start = [](const QUrl&) { return false; };
    std::function<void(const QUrl&)> stop = [](const QUrl&) {};
};

// Runs `work` between start() and stop() of `scope`, and passes on its result or its exception. If
// start() returns false, `work` runs as well, but stop() is not called.
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

// The URL to which the bookmark leads now; `fallback` if there is no bookmark or it leads nowhere.
QUrl resolvedURL(const QUrl& fallback, const std::optional<QByteArray>& bookmarkData);

// Calls PhotoCache::accept() for the photo at resolvedURL(). Returns nothing if it cannot be read.
// Waits for the disk and the codec.
std::optional<AcceptedPhoto> image(const QUrl& url, const std::optional<QByteArray>& bookmarkData,
                                   PhotoCache& cache);

// Calls PhotoCache::identify() for the photo at resolvedURL(). Waits for the disk and the codec.
std::optional<AcceptedPhoto>
identified(const QUrl& url, const std::optional<QByteArray>& bookmarkData, PhotoCache& cache);

// Calls PhotoCache::reopen() for the photo at resolvedURL(). Waits for the disk and the codec.
std::optional<AcceptedPhoto>
reopened(const QUrl& url, const std::optional<QByteArray>& bookmarkData, PhotoCache& cache);

}    // namespace ImageAccess
