#pragma once

#include "platform/PhotoCache.h"

#include <QScopeGuard>
#include <QUrl>

#include <functional>
#include <optional>
#include <utility>

// Reaching a photo the user once chose. Some systems hand out bookmarks that outlive the program
// and ask that access be started and stopped around each use; here a path is enough, and the calls
// stay so that their users need not know.
namespace ImageAccess {

// How this system starts and stops access. Starting may answer that there was nothing to start.
struct SecurityScope {
    std::function<bool(const QUrl&)> start = [](const QUrl&) { return false; };
    std::function<void(const QUrl&)> stop = [](const QUrl&) {};
};

// Runs `work` while access is open and passes on its result or its exception. What did not start is
// not stopped, and the work is tried all the same.
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

// Where the bookmark leads now; the fallback without a bookmark or when it leads nowhere.
QUrl resolvedURL(const QUrl& fallback, const std::optional<QByteArray>& bookmarkData);

// The photo, through its bookmark; nothing when it cannot be read. Waits.
std::optional<AcceptedPhoto> image(const QUrl& url, const std::optional<QByteArray>& bookmarkData,
                                   PhotoCache& cache);

// The same without its pixels; see PhotoCache::identify. Waits.
std::optional<AcceptedPhoto>
identified(const QUrl& url, const std::optional<QByteArray>& bookmarkData, PhotoCache& cache);

// The same for a photo of an earlier run, without its pixels; see PhotoCache::reopen. Waits.
std::optional<AcceptedPhoto>
reopened(const QUrl& url, const std::optional<QByteArray>& bookmarkData, PhotoCache& cache);

}    // namespace ImageAccess
