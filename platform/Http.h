#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <exception>
#include <functional>
#include <optional>
#include <utility>
#include <variant>

// Whether `host` is "localhost" or a loopback address.
bool isLoopback(const QString& host);

using HttpHeaders = QList<std::pair<QByteArray, QByteArray>>;

// A file that is the body of a request. It is read while it is sent and must not change meanwhile.
struct BodyFile {
    QString path;
};
using HttpBody = std::variant<QByteArray, BodyFile>;

struct HttpRequest {
    QByteArray method = "GET";
    QUrl url;
    HttpHeaders headers;
    std::optional<HttpBody> body;
    std::chrono::milliseconds timeout = std::chrono::seconds(35);    // from start to last byte
    qint64 largestReply = 64 * 1024 * 1024;
    // Whether the body of a reply that is larger is cut off. If not, such a reply is an error.
    bool cutsLargeReply = false;
    // Whether a stop_token that is told to stop after the whole request was sent has no effect.
    bool staysOnceSent = false;
    // Told now and then how much of the body was sent, and when all of it was. May be empty.
    std::function<void(qint64 bytes)> onSent;
};

struct HttpReply {
    int status = 0;
    HttpHeaders headers;    // the same name may occur several times
    QByteArray body;
};

// The failure of an exchange that ended without a reply.
class TransportError : public std::exception {
public:
    // brokenOff: the connection broke before a valid answer came.
    // unreadableBody: the file with the body of the request could not be read.
    enum class Kind {
        unreachable,
        timedOut,
        stopped,
        tooLarge,
        notHttp,
        brokenOff,
        unreadableBody,
    };

    TransportError(Kind kind, const QString& text)
        : m_kind(kind), m_text(text), m_what(text.toUtf8())
    {
    }
    static TransportError timedOut();
    static TransportError stopped();    // by a stop_token, or by the destructor of HttpClient

    Kind kind() const { return m_kind; }
    const QString& text() const { return m_text; }    // for the user, in Spanish
    // Whether the last byte of the request's body may have left, so that the server may have acted
    // on it. False for a request without a body.
    bool wasSent() const { return m_wasSent; }
    void setSent() { m_wasSent = true; }
    const char* what() const noexcept override { return m_what.constData(); }

private:
    Kind m_kind;
    QString m_text;
    QByteArray m_what;
    bool m_wasSent = false;
};
