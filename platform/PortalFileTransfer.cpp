#include "platform/PortalFileTransfer.h"

#include <QCoroDBusPendingCall>

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QMimeData>
#include <QVariantMap>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestPortalWait = 10'000;    // ms
constexpr qsizetype longestKey = 256;

QStringList transferFormats()
{
    return {u"application/vnd.portal.filetransfer"_s, u"application/vnd.portal.files"_s};
}

}    // namespace

bool offersPortalFiles(const QMimeData& data)
{
    const QStringList formats = transferFormats();
    return std::ranges::any_of(formats,
                               [&data](const QString& format) { return data.hasFormat(format); });
}

// Asks for one format: they hold the same key, and a program that does not answer for one lets the
// window wait for the other too.
QByteArray portalTransferKey(const QMimeData& data)
{
    const QStringList formats = transferFormats();
    const auto offered = std::ranges::find_if(
        formats, [&data](const QString& format) { return data.hasFormat(format); });
    if (offered == formats.end())
        return {};
    QByteArray key = data.data(*offered);
    while (key.endsWith('\0') || key.endsWith('\n'))
        key.chop(1);
    return key.size() <= longestKey ? key : QByteArray();
}

QCoro::Task<std::optional<QList<QUrl>>> portalFiles(QByteArray key, QDBusConnection bus)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        u"org.freedesktop.portal.Documents"_s, u"/org/freedesktop/portal/documents"_s,
        u"org.freedesktop.portal.FileTransfer"_s, u"RetrieveFiles"_s);
    question << QString::fromUtf8(key) << QVariantMap();
    const QDBusPendingCall asking = bus.asyncCall(question, longestPortalWait);
    const QDBusMessage answer = co_await asking;
    const QDBusPendingReply<QStringList> reply(answer);
    if (reply.isError())
        co_return std::nullopt;
    QList<QUrl> files;
    for (const QString& path : reply.value())
        files.append(QUrl::fromLocalFile(path));
    co_return files;
}
