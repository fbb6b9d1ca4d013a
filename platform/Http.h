#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <exception>
#include <optional>
#include <utility>

// Whether `host` is "localhost" or a loopback address.
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
    HttpHeaders headers;    // the same name may occur several times
    QByteArray body;
};

// The failure of an exchange that ended without a reply.
class TransportError : public std::exception {
public:
    // brokenOff: the connection broke after the request was sent, before a valid answer came.
    enum class Kind { unreachable, timedOut, stopped, tooLarge, notHttp, brokenOff };

    TransportError(Kind kind, const QString& text)
        : m_kind(kind), m_text(text), m_what(text.toUtf8())
    {
    }
    static TransportError timedOut();
    static TransportError stopped();    // by a stop_token, or by the destructor of HttpClient

    Kind kind() const { return m_kind; }
    const QString& text() const { return m_text; }    // for the user, in Spanish
    const char* what() const noexcept override { return m_what.constData(); }

private:
    Kind m_kind;
    QString m_text;
    QByteArray m_what;
};
