#include "platform/HttpExchange.h"

#include <QBuffer>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QSslError>

#include <array>

using namespace Qt::StringLiterals;

// The body of a request. It can be read only once, so that Qt cannot repeat the request. Qt would
// do that if the server closes the connection before it answers, but the server may already have
// acted on the body.
class RequestBody final : public QIODevice {
public:
    RequestBody(const HttpBody& body, std::function<void(qint64 bytes)> onSent, QObject* parent)
        : QIODevice(parent), m_onSent(std::move(onSent))
    {
        if (const auto* file = std::get_if<BodyFile>(&body)) {
            m_source = new QFile(file->path, this);
        } else {
            auto* bytes = new QBuffer(this);
            bytes->setData(std::get<QByteArray>(body));
            m_source = bytes;
        }
        m_isIntact = m_source->open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        m_size = m_source->size();
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool isSequential() const override { return true; }
    bool reset() override { return m_read == 0; }
    qint64 size() const override { return m_size; }
    qint64 bytesAvailable() const override { return m_size - m_read; }
    bool atEnd() const override { return bytesAvailable() == 0; }

    bool isIntact() const { return m_isIntact; }
    // Whether Qt has taken all of it. The last bytes may still be in a buffer of Qt or the system.
    bool isSent() const { return m_isIntact && atEnd(); }
    QString reason() const { return m_source->errorString(); }

protected:
    qint64 readData(char* to, qint64 most) override
    {
        const qint64 wanted = qMin(most, bytesAvailable());
        const qint64 count = m_source->read(to, wanted);
        m_isIntact = m_isIntact && (count > 0 || wanted == 0);
        if (!m_isIntact)
            return -1;
        m_read += count;
        if (m_onSent && (atEnd() || m_read - m_told >= sentStep))
            m_onSent(m_told = m_read);
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    static constexpr qint64 sentStep = 64 * 1024;

    const std::function<void(qint64 bytes)> m_onSent;
    QIODevice* m_source;
    bool m_isIntact = false;
    qint64 m_size = 0, m_read = 0, m_told = 0;
};

namespace {

// Uses the system's proxies, but none for this machine itself.
class SystemProxies final : public QNetworkProxyFactory {
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override
    {
        return isLoopback(query.peerHostName()) ? QList{QNetworkProxy(QNetworkProxy::NoProxy)}
                                                : systemProxyForQuery(query);
    }
};

// Messages for errors that Qt describes too tersely or not at all.
struct Sentence {
    QNetworkReply::NetworkError error;
    QStringView text;
};
constexpr std::array sentences{
    Sentence{QNetworkReply::ConnectionRefusedError,
             u"No se ha podido conectar: el servidor no responde en esa dirección."},
    Sentence{QNetworkReply::RemoteHostClosedError,
             u"El servidor ha cortado la conexión. Inténtalo otra vez."},
    Sentence{QNetworkReply::ContentReSendError,
             u"El servidor ha cortado la conexión. Inténtalo otra vez."},
    Sentence{QNetworkReply::HostNotFoundError,
             u"No se encuentra el servidor. Comprueba tu conexión a internet."},
    Sentence{QNetworkReply::SslHandshakeFailedError,
             u"No se ha podido comprobar la identidad del servidor: su certificado no es válido."},
    Sentence{QNetworkReply::TemporaryNetworkFailureError,
             u"Se ha perdido la conexión. Inténtalo otra vez."},
    Sentence{QNetworkReply::NetworkSessionFailedError,
             u"No hay conexión. Comprueba la red de este equipo."},
    Sentence{QNetworkReply::UnknownNetworkError,
             u"No se ha podido conectar con el servidor. Comprueba tu conexión a internet."},
};

}    // namespace

TransportError transportErrorOf(const QNetworkReply& reply)
{
    using Kind = TransportError::Kind;
    const auto error = reply.error();
    const auto found = std::ranges::find(sentences, error, &Sentence::error);
    const QString text = found == sentences.end() ? reply.errorString() : found->text.toString();
    switch (error) {
    case QNetworkReply::TimeoutError:
    case QNetworkReply::ProxyTimeoutError:
        return TransportError::timedOut();
    case QNetworkReply::ProtocolFailure:
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolInvalidOperationError:
        return {Kind::notHttp, u"No se ha podido leer la respuesta del servidor."_s};
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::ContentReSendError:
        return {Kind::brokenOff, text};
    default:
        return {Kind::unreachable, text};
    }
}

std::unique_ptr<QNetworkProxyFactory> systemProxies()
{
    return std::make_unique<SystemProxies>();
}

namespace {

// Whether the server answered, with any status. Qt reports every status above 399 as an error. If
// Qt cannot read the body of a request again, it reports a redirection with status 307 or 308 as
// ContentReSendError.
bool isAnswer(const QNetworkReply& reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    switch (reply.error()) {
    case QNetworkReply::ContentReSendError:
        return status == 307 || status == 308;
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return status == 407;    // any server may send this status, not only a proxy
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolFailure:
        return false;
    default:
        return status > 0 && (reply.error() == QNetworkReply::NoError ||
                              reply.error() >= QNetworkReply::ContentAccessDenied);
    }
}

// Splits the values that Qt has joined with line breaks because they have the same name.
HttpHeaders headersOf(const QNetworkReply& reply)
{
    HttpHeaders headers;
    for (const auto& [name, joined] : reply.rawHeaderPairs()) {
        for (const QByteArray& value : joined.split('\n'))
            headers.append({name, value});
    }
    return headers;
}

QNetworkRequest prepared(const HttpRequest& request, const RequestBody* body)
{
    QNetworkRequest network(request.url);
    for (const auto& [name, value] : request.headers)
        network.setRawHeader(name, value);
    network.setRawHeader("Connection", "close");    // each connection serves one exchange
    const auto manual = QNetworkRequest::Manual;
    network.setAttribute(QNetworkRequest::CookieLoadControlAttribute, manual);
    network.setAttribute(QNetworkRequest::CookieSaveControlAttribute, manual);
    network.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, manual);
    network.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    network.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    network.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    network.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    if (body) {
        network.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
        network.setHeader(QNetworkRequest::ContentLengthHeader, body->size());
    }
    return network;
}

TransportError unreadableBody(const QString& reason)
{
    return {TransportError::Kind::unreadableBody,
            u"No se ha podido leer lo que se envía: %1."_s.arg(reason)};
}

}    // namespace

HttpExchange::HttpExchange(const HttpRequest& request, std::stop_token stop, QObject* parent)
    : QObject(parent), m_largest(request.largestReply), m_cutsLargeReply(request.cutsLargeReply),
      m_staysOnceSent(request.staysOnceSent), m_manager(new QNetworkAccessManager(this))
{
    m_manager->setProxyFactory(systemProxies().release());    // the manager takes ownership
    if (stop.stop_requested()) {
        finish(TransportError::stopped());
        return;
    }
    if (request.body)
        m_upload = new RequestBody(*request.body, request.onSent, this);
    if (m_upload && !m_upload->isIntact()) {
        finish(unreadableBody(m_upload->reason()));
        return;
    }
    m_reply = m_manager->sendCustomRequest(prepared(request, m_upload), request.method, m_upload);
    m_reply->setParent(this);
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpExchange::receive);
    connect(m_reply, &QNetworkReply::finished, this, &HttpExchange::conclude);
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout(this, [this] { finish(TransportError::timedOut()); });
    m_timer.start(qMax(std::chrono::milliseconds(0), request.timeout));
    m_onStop.emplace(std::move(stop), [this] { stopUnlessSent(); });
}

HttpExchange::~HttpExchange()
{
    m_onStop.reset();    // a stop request must not reach a half-destroyed object
    if (m_reply)
        m_reply->disconnect(this);
}

void HttpExchange::stop()
{
    finish(TransportError::stopped());
}

void HttpExchange::stopUnlessSent()
{
    if (!m_staysOnceSent || !m_upload || !m_upload->isSent())
        stop();
}

void HttpExchange::receive()
{
    m_body += m_reply->readAll();
    if (m_body.size() <= m_largest)
        return;
    if (m_cutsLargeReply) {
        m_body.truncate(m_largest);
        answer();
    } else {
        finish(TransportError(TransportError::Kind::tooLarge,
                              u"La respuesta del servidor es demasiado grande."_s));
    }
}

void HttpExchange::conclude()
{
    receive();
    if (m_outcome)
        return;
    if (m_upload && !m_upload->isIntact())
        finish(unreadableBody(m_upload->reason()));
    else if (!isAnswer(*m_reply))
        finish(transportErrorOf(*m_reply));
    else
        answer();
}

void HttpExchange::answer()
{
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    finish(HttpReply{status, headersOf(*m_reply), std::move(m_body)});
}

void HttpExchange::finish(Outcome outcome)
{
    if (m_outcome)
        return;
    m_outcome = std::move(outcome);
    if (auto* failure = std::get_if<TransportError>(&*m_outcome);
        failure && m_upload && m_upload->isSent())
        failure->setSent();
    m_timer.stop();
    if (m_reply) {
        m_reply->disconnect(this);
        if (m_reply->isRunning())
            m_reply->abort();
    }
    m_finished.complete();
}
