#include "copygen/PinnedDownload.h"

#include "platform/Completion.h"
#include "platform/HttpExchange.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QScopedPointer>
#include <QStorageInfo>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

FetchOutcome wrongFile(const PinnedFile& pin)
{
    return {
        installWrongFile,
        u"El archivo descargado no es el esperado: %1. Inténtalo otra vez."_s.arg(pin.fileName())};
}

FetchOutcome lacksRoom()
{
    return {installLacksRoom, u"No queda espacio en el disco."_s};
}

FetchOutcome unwritable(const QFile& file)
{
    return {1, u"No se ha podido escribir en «%1»: %2."_s.arg(file.fileName(), file.errorString())};
}

// The bytes that have been downloaded so far, on the disk, and their digest.
class PartFile {
public:
    explicit PartFile(const QString& path) : m_file(path)
    {
        // Downloads make regular files only. Through a link, another file would be overwritten.
        if (const QFileInfo there(path); there.isSymLink() || (there.exists() && !there.isFile()))
            m_file.remove();
        // Unbuffered, so that nothing that was received is lost with a killed process.
        m_isOpen =
            m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) && m_digest.addData(&m_file);
        m_size = m_isOpen ? m_file.pos() : 0;
    }

    bool isOpen() const { return m_isOpen; }
    qint64 size() const { return m_size; }
    const QFile& file() const { return m_file; }

    // Why the bytes could not be stored; nothing when they were.
    std::optional<FetchOutcome> append(QByteArrayView bytes)
    {
        const qint64 written = m_file.write(bytes.data(), bytes.size());
        const qint64 stored = std::max<qint64>(0, written);
        m_digest.addData(bytes.first(stored));
        m_size += stored;
        if (stored == bytes.size())
            return std::nullopt;
        // A full disk takes a part of the bytes, and QFile reports no error then.
        return isFull() ? lacksRoom() : unwritable(m_file);
    }

    void clear()
    {
        m_file.resize(0);
        m_file.seek(0);
        m_digest.reset();
        m_size = 0;
    }

    bool is(const PinnedFile& pin) const
    {
        return m_size == pin.bytes && m_digest.result().toHex() == pin.sha256.toLatin1();
    }

    // Gives the whole file its name.
    std::optional<FetchOutcome> rename(const QString& path)
    {
        if (::fsync(m_file.handle()) != 0)
            return isFull() ? lacksRoom() : unwritable(m_file);
        if (std::rename(QFile::encodeName(m_file.fileName()).constData(),
                        QFile::encodeName(path).constData()) != 0)
            return FetchOutcome{1, qt_error_string()};
        return std::nullopt;
    }

private:
    bool isFull() const
    {
        constexpr qint64 someRoom = 64 << 10;    // bytes
        return errno == ENOSPC || errno == EDQUOT || errno == EFBIG ||
               m_file.error() == QFileDevice::ResourceError ||
               QStorageInfo(m_file.fileName()).bytesAvailable() < someRoom;
    }

    QFile m_file;
    QCryptographicHash m_digest{QCryptographicHash::Sha256};
    bool m_isOpen = false;
    qint64 m_size = 0;
};

bool isAllowed(const QUrl& url, bool wasEncrypted)
{
    return url.isValid() &&
           (url.scheme() == u"https"_s ||
            (url.scheme() == u"http"_s && !wasEncrypted && isLoopback(url.host())));
}

// One request for the missing bytes, with the redirections that it leads to.
class FetchAttempt : public QObject {
public:
    FetchAttempt(const PinnedFile& pin, PartFile& part) : m_pin(pin), m_part(part)
    {
        m_manager.setProxyFactory(systemProxies().release());    // the manager owns it
        request(QUrl(pin.url, QUrl::StrictMode), false);
    }
    ~FetchAttempt() override
    {
        if (m_reply)
            m_reply->disconnect(this);
    }

    Completion& finished() { return m_finished; }
    // Why another attempt is useless. Nothing: the connection ended, for the reason brokenBy().
    const std::optional<FetchOutcome>& failure() const { return m_failure; }
    const QString& brokenBy() const { return m_brokenBy; }

private:
    void request(const QUrl& url, bool wasEncrypted)
    {
        constexpr int mostRedirections = 10;
        constexpr std::chrono::milliseconds longestSilence = std::chrono::seconds(60);
        constexpr qint64 buffer = 1 << 20;    // bytes
        if (!isAllowed(url, wasEncrypted) || ++m_requests > mostRedirections) {
            fail({1, u"La dirección de descarga no es segura: %1"_s.arg(
                         url.toDisplayString(QUrl::RemoveQuery | QUrl::RemoveUserInfo))});
            return;
        }
        QNetworkRequest network(url);
        network.setRawHeader("Accept-Encoding", "identity");
        if (m_part.size() > 0)
            network.setRawHeader("Range", "bytes=" + QByteArray::number(m_part.size()) + '-');
        network.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::ManualRedirectPolicy);
        network.setTransferTimeout(int(longestSilence.count()));
        m_skipped = std::nullopt;
        m_reply = m_manager.get(network);
        m_reply->setParent(this);
        m_reply->setReadBufferSize(buffer);
        connect(m_reply, &QNetworkReply::readyRead, this, &FetchAttempt::receive);
        connect(m_reply, &QNetworkReply::finished, this, &FetchAttempt::conclude);
    }

    int status() const
    {
        return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    }

    // The number of bytes at the start of the body that are stored already. Nothing when the body
    // is not the pinned file.
    std::optional<qint64> storedAlready() const
    {
        const qint64 have = m_part.size();
        if (status() == 206) {
            const QByteArray range = "bytes " + QByteArray::number(have) + '-' +
                                     QByteArray::number(m_pin.bytes - 1) + '/' +
                                     QByteArray::number(m_pin.bytes);
            return m_reply->rawHeader("Content-Range").trimmed() == range ? std::optional<qint64>(0)
                                                                          : std::nullopt;
        }
        // A server without ranges sends the whole file. A page to sign in to a public network has
        // another length, or none.
        const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
        return length.toLongLong() == m_pin.bytes ? std::optional(have) : std::nullopt;
    }

    void receive()
    {
        if (status() != 200 && status() != 206)
            return;    // conclude() tells why
        if (!m_skipped) {
            m_skipped = storedAlready();
            if (!m_skipped)
                return fail(wrongFile(m_pin));
        }
        while (!m_failure && m_reply->bytesAvailable() > 0)
            take();
    }

    void take()
    {
        std::array<char, 256 * 1024> buffer;
        const qint64 count = m_reply->read(buffer.data(), buffer.size());
        const qint64 skipped = std::clamp<qint64>(*m_skipped, 0, std::max<qint64>(0, count));
        *m_skipped -= skipped;
        const QByteArrayView bytes(buffer.data() + skipped, std::max<qint64>(0, count) - skipped);
        if (m_part.size() + bytes.size() > m_pin.bytes)
            return fail(wrongFile(m_pin));
        if (const auto unstored = m_part.append(bytes))
            fail(*unstored);
    }

    void conclude()
    {
        receive();
        if (m_failure)
            return;
        const int answered = status();
        const QByteArray location = m_reply->rawHeader("Location");
        if (answered / 100 == 3 && !location.isEmpty()) {
            const QUrl here = m_reply->url();
            m_reply->disconnect(this);
            std::exchange(m_reply, nullptr)->deleteLater();
            return request(here.resolved(QUrl::fromEncoded(location)), here.scheme() == u"https"_s);
        }
        if (answered == 416)    // the file ends before the range
            return fail(wrongFile(m_pin));
        if (answered >= 300)
            return fail({1, u"El servidor de descargas ha respondido %1."_s.arg(answered)});
        m_brokenBy = transportErrorOf(*m_reply).text();
        m_reply->disconnect(this);
        m_finished.complete();
    }

    void fail(const FetchOutcome& failure)
    {
        m_failure = failure;
        if (m_reply) {
            m_reply->disconnect(this);
            m_reply->abort();
        }
        m_finished.complete();
    }

    const PinnedFile& m_pin;
    PartFile& m_part;
    QNetworkAccessManager m_manager;
    QNetworkReply* m_reply = nullptr;
    int m_requests = 0;
    std::optional<qint64> m_skipped;    // bytes of this body that are still to be passed over
    std::optional<FetchOutcome> m_failure;
    QString m_brokenBy;
    Completion m_finished;
};

bool isThere(const QString& path, const PinnedFile& pin)
{
    QFile file(path);
    QCryptographicHash digest(QCryptographicHash::Sha256);
    return file.size() == pin.bytes && file.open(QIODevice::ReadOnly) && digest.addData(&file) &&
           digest.result().toHex() == pin.sha256.toLatin1();
}

}    // namespace

QCoro::Task<FetchOutcome> fetchPinned(PinnedFile pin, QString path)
{
    if (isThere(path, pin))
        co_return FetchOutcome{};
    PartFile part(path + u".part"_s);
    if (!part.isOpen())
        co_return unwritable(part.file());
    if (part.size() > pin.bytes)
        part.clear();
    while (part.size() < pin.bytes) {
        const qint64 before = part.size();
        // Deleted later, because it completes inside a signal of its own reply.
        const std::unique_ptr<FetchAttempt, QScopedPointerDeleteLater> attempt(
            new FetchAttempt(pin, part));
        co_await attempt->finished().wait();
        if (attempt->failure()) {
            const FetchOutcome failure = *attempt->failure();
            co_return failure;
        }
        if (part.size() == before) {
            const FetchOutcome broken{1, attempt->brokenBy()};
            co_return broken;
        }
    }
    if (!part.is(pin)) {
        part.clear();
        co_return wrongFile(pin);
    }
    co_return part.rename(path).value_or(FetchOutcome{});
}
