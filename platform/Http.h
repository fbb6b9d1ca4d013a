#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <exception>
#include <optional>
#include <utility>

// A name or an address of this machine.
bool isLoopback(const QString& host);

using HttpHeaders = QList<std::pair<QByteArray, QByteArray>>;

struct HttpRequest {
    QByteArray method = "GET";
    QUrl url;
    HttpHeaders headers;
    std::optional<QByteArray> body;
    std::chrono::milliseconds timeout = std::chrono::seconds(35);    // from start to last byte
    qint64 largestReply = 64 * 1024 * 1024;
};

struct HttpReply {
    int status = 0;
    HttpHeaders headers;    // a name may come several times
    QByteArray body;
};

// The exchange came to no reply.
class TransportError : public std::exception {
public:
    // brokenOff: it was sent, and then nothing came that the toolkit takes for an answer.
    enum class Kind { unreachable, timedOut, stopped, tooLarge, notHttp, brokenOff };

    TransportError(Kind kind, const QString& text)
        : m_kind(kind), m_text(text), m_what(text.toUtf8())
    {
    }
    static TransportError timedOut();
    static TransportError stopped();    // as was asked for

    Kind kind() const { return m_kind; }
    const QString& text() const { return m_text; }    // for the user, in Spanish
    const char* what() const noexcept override { return m_what.constData(); }

private:
    Kind m_kind;
    QString m_text;
    QByteArray m_what;
};
