#include "platform/photo/ImageAccess.h"

std::optional<QByteArray> ImageAccess::bookmarkData(const QUrl&)
{
    return {};
}

QUrl ImageAccess::resolvedURL(const QUrl& fallback, const std::optional<QByteArray>&)
{
    return fallback;
}

std::optional<AcceptedPhoto> ImageAccess::image(const QUrl& url,
                                                const std::optional<QByteArray>& bookmarkData,
                                                PhotoCache& cache)
{
    const QUrl resolved = resolvedURL(url, bookmarkData);
    if (!resolved.isLocalFile())
        return {};
    return withSecurityScope(resolved, [&] { return cache.accept(resolved.toLocalFile()); });
}

std::optional<AcceptedPhoto> ImageAccess::identified(const QUrl& url,
                                                     const std::optional<QByteArray>& bookmarkData,
                                                     PhotoCache& cache)
{
    const QUrl resolved = resolvedURL(url, bookmarkData);
    if (!resolved.isLocalFile())
        return {};
    return withSecurityScope(resolved, [&] { return cache.identify(resolved.toLocalFile()); });
}

std::optional<AcceptedPhoto> ImageAccess::reopened(const QUrl& url,
                                                   const std::optional<QByteArray>& bookmarkData,
                                                   PhotoCache& cache)
{
    const QUrl resolved = resolvedURL(url, bookmarkData);
    if (!resolved.isLocalFile())
        return {};
    return withSecurityScope(resolved, [&] { return cache.reopen(resolved.toLocalFile()); });
}
