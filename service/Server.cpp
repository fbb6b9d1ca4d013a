#include "service/Server.h"

#include "platform/DecodeGate.h"
#include "service/PacedStream.h"
#include "service/Routes.h"
#include "service/Service.h"
#include "service/Texts.h"
#include "service/Threads.h"
#include "service/Visit.h"

#include <QHostAddress>
#include <QUrlQuery>

#include <sys/socket.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <map>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr size_t mostThreads = 256;
constexpr auto keepAlive = 1000ms, endingTime = 2000ms;
constexpr int mostRequests = 1000;    // on one connection
constexpr int waitingConnections = 512;
constexpr qsizetype longestPath = 512;

constexpr size_t largestBody = 161 << 20;
constexpr qint64 receivedAtOnce = 384 << 20;    // bytes of bodies
constexpr qint64 handledAtOnce = 256 << 20;
// A body is text, parsed text, a record and what the record holds.
constexpr qint64 copiesOfBody = 6, smallBody = 1 << 20;

// Which sockets are open, to end them.
class Connections {
public:
    void add(socket_t socket)
    {
        change([&] { m_isBusy[socket] = false; });
    }
    void remove(socket_t socket)
    {
        change([&] { m_isBusy.erase(socket); });
    }
    void setBusy(socket_t socket, bool isBusy)
    {
        change([&] { m_isBusy[socket] = isBusy; });
    }

    void endIdle()
    {
        change([&] {
            for (const auto& [socket, isBusy] : m_isBusy) {
                if (!isBusy)
                    ::shutdown(socket, SHUT_RDWR);
            }
        });
    }
    bool waitUntilNone(std::chrono::milliseconds time)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, time, [&] { return m_isBusy.empty(); });
    }
    void endAll()
    {
        change([&] {
            for (const auto& [socket, isBusy] : m_isBusy)
                ::shutdown(socket, SHUT_RDWR);
        });
    }

private:
    template <typename Change>
    void change(Change&& apply)
    {
        const std::scoped_lock lock(m_mutex);
        apply();
        m_changed.notify_all();
    }
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<socket_t, bool> m_isBusy;
};

// The pieces of a large body are too small for the allocator to return by itself.
void giveMemoryBack()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

QString header(const httplib::Request& request, const char* name)
{
    return QString::fromStdString(request.get_header_value(name));
}

bool isType(const httplib::Request& request, const char* type)
{
    const QString given = header(request, "Content-Type").section(u';', 0, 0).trimmed().toLower();
    return given == QLatin1String(type);
}

// Bytes of the body; nothing when the request contradicts itself, -1 when it comes in chunks.
std::optional<qint64> announcedBody(const httplib::Request& request)
{
    const bool isChunked = request.has_header("Transfer-Encoding");
    const auto lengths = request.get_header_value_count("Content-Length");
    if (lengths > 1 || (isChunked && lengths > 0))
        return std::nullopt;
    if (isChunked)
        return header(request, "Transfer-Encoding").toLower() == u"chunked" ? std::optional(-1)
                                                                            : std::nullopt;
    if (lengths == 0)
        return 0;
    bool isNumber = false;
    const qint64 length = header(request, "Content-Length").toLongLong(&isNumber);
    return isNumber && length >= 0 ? std::optional(length) : std::nullopt;
}

QHash<QByteArray, QByteArray> cookiesOf(const httplib::Request& request)
{
    QHash<QByteArray, QByteArray> cookies;
    const auto [begin, end] = request.headers.equal_range("Cookie");
    for (auto one = begin; one != end; ++one) {
        for (const QByteArray& pair : QByteArray::fromStdString(one->second).split(';')) {
            const qsizetype equals = pair.indexOf('=');
            const QByteArray name = pair.left(equals).trimmed();
            if (equals > 0 && !cookies.contains(name))
                cookies.insert(name, pair.mid(equals + 1).trimmed());
        }
    }
    return cookies;
}

QHash<QString, QString> fieldsOf(const QByteArray& encoded)
{
    QHash<QString, QString> fields;
    const QUrlQuery query(QString::fromLatin1(encoded).replace(u'+', u"%20"_s));
    for (const auto& [name, value] : query.queryItems(QUrl::FullyDecoded)) {
        if (!fields.contains(name))
            fields.insert(name, value);
    }
    return fields;
}

std::optional<ServiceMethod> methodOf(const httplib::Request& request)
{
    if (request.method == "GET" || request.method == "HEAD")
        return ServiceMethod::get;
    if (request.method == "POST")
        return ServiceMethod::post;
    return request.method == "PATCH" ? std::optional(ServiceMethod::patch) : std::nullopt;
}

}    // namespace

class Server::Http final : public httplib::Server {
public:
    Http(Service& service, const QString& host) : m_service(service), m_host(host)
    {
        new_task_queue = [] { return std::make_unique<Threads>(mostThreads).release(); };
        // Without the library's choice to let two programs share a port.
        set_socket_options([](socket_t socket) {
            const int yes = 1;
            ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
        });
        set_tcp_nodelay(true);
        // The routes have limits of their own.
        set_payload_max_length(largestBody);
        set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& reply) {
            return answerWithoutBody(request, reply) ? HandlerResponse::Handled
                                                     : HandlerResponse::Unhandled;
        });
        const auto withBody = [this](const httplib::Request& request, httplib::Response& reply,
                                     const httplib::ContentReader& reader) {
            answerWithBody(request, reply, reader);
        };
        Post("/.*", withBody);
        Patch("/.*", withBody);
        set_exception_handler([](const auto&, httplib::Response& reply, const auto&) {
            give(reply, refusalReply(Refusal(500, "server_error")));
        });
        set_error_handler([](const httplib::Request&, httplib::Response& reply) {
            if (reply.body.empty())
                give(reply, refusalReply(Refusal(reply.status, "invalid_request")));
        });
    }

    bool start(int port, int preferred)
    {
        const std::string host = m_host.toStdString();
        if (port > 0)
            m_port = bind_to_port(host, port) ? port : 0;
        else if (preferred > 0 && bind_to_port(host, preferred))
            m_port = preferred;
        else
            m_port = std::max(0, bind_to_any_port(host));
        if (m_port == 0)
            return false;
        // The library lets five wait, and the system makes the sixth try again a second later.
        ::listen(svr_sock_, waitingConnections);
        m_listening = std::thread([this] { listen_after_bind(); });
        while (!is_running())
            std::this_thread::sleep_for(1ms);
        return true;
    }

    void end()
    {
        if (!m_listening.joinable())
            return;
        m_service.isEnding() = true;
        stop();
        m_connections.endIdle();
        if (!m_connections.waitUntilNone(endingTime))
            m_connections.endAll();
        m_listening.join();
    }

    int port() const { return m_port; }
    QString address() const
    {
        const QString name = m_host.contains(u':') ? u"[%1]"_s.arg(m_host) : m_host;
        return u"http://%1:%2"_s.arg(name).arg(m_port);
    }

private:
    // The library's own loop waits on each byte anew, for as long as they keep dropping in.
    bool process_and_close_socket(socket_t socket) override
    {
        m_connections.add(socket);
        PacedStream stream(socket);
        for (int left = mostRequests; left > 0 && !m_service.isEnding(); --left) {
            if (!stream.waitForRequest(keepAlive))
                break;
            m_connections.setBusy(socket, true);
            const bool mayGoOn = answerOne(stream, left == 1);
            m_connections.setBusy(socket, false);
            if (!mayGoOn)
                break;
        }
        stream.drain();
        m_connections.remove(socket);
        ::close(socket);
        return true;
    }

    // Whether another request may follow on the connection.
    bool answerOne(PacedStream& stream, bool isLast)
    {
        std::optional<qint64> announced;
        bool mayGoOn = false, isClosed = false;
        stream.beginRequest();
        const bool isWhole =
            process_request(stream, isLast, isClosed, [&](httplib::Request& request) {
                stream.headHasEnded();
                announced = announcedBody(request);
                // The library would cut and pack answers as it is told, however hostile.
                request.ranges.clear();
                request.headers.erase("Accept-Encoding");
                // A client that sends to a connection just as we give it up does not know whether
                // it was heard, and calls move credits: each gets a connection of its own.
                if (isApi(QString::fromStdString(request.path))) {
                    request.headers.erase("Connection");
                    request.headers.emplace("Connection", "close");
                }
                mayGoOn = request.get_header_value("Connection") != "close";
            });
        if (qint64(stream.bodyBytes()) > smallBody)
            giveMemoryBack();
        // What was not read of a body would be taken for the next request.
        return isWhole && mayGoOn && !isClosed && announced && *announced >= 0 &&
               qint64(stream.bodyBytes()) == *announced;
    }

    static void give(httplib::Response& reply, const ServiceReply& answer)
    {
        reply.status = answer.status;
        reply.set_header("X-Content-Type-Options", "nosniff");
        reply.set_header("Referrer-Policy", "no-referrer");
        reply.set_header("Cache-Control", "no-store");
        reply.set_header("Content-Security-Policy",
                         "default-src 'none'; style-src 'self'; img-src 'self'; "
                         "form-action 'self'; frame-ancestors 'none'; base-uri 'none'");
        for (const auto& [name, value] : answer.headers)
            reply.set_header(name.toStdString(), value.toStdString());
        reply.set_content(answer.body.toStdString(), answer.type.toStdString());
    }

    ServiceRequest requestOf(const httplib::Request& request) const
    {
        ServiceRequest result;
        const auto method = methodOf(request);
        if (!method)
            throw Refusal(405, "method_not_allowed");
        if (!announcedBody(request))
            throw Refusal(400, "invalid_request", u"the length of the body"_s);
        result.method = *method;
        result.path = QString::fromStdString(request.path);
        // A line end would also slip past the pattern of the handlers.
        if (result.path.size() > longestPath || !isPrintable(result.path))
            throw Refusal(404, "not_found");
        result.base = u"http://"_s + ownHost(request);
        for (const auto& [name, value] : request.params) {
            const QString key = QString::fromStdString(name);
            if (!result.query.contains(key))
                result.query.insert(key, QString::fromStdString(value));
        }
        result.cookies = cookiesOf(request);
        result.address = QString::fromStdString(request.remote_addr);
        result.isLocal =
            QHostAddress(result.address).isLoopback() || request.remote_addr == request.local_addr;
        return result;
    }

    // As the client names us. A page of another site can make its own name lead to this machine,
    // and would then be asked by the browser as if it were us.
    QString ownHost(const httplib::Request& request) const
    {
        QString host = header(request, "Host").toLower();
        const QUrl url(u"http://"_s + host, QUrl::StrictMode);
        const QHostAddress address(url.host());
        const QHostAddress told(m_host);
        const bool isEverywhere = told == QHostAddress(QHostAddress::AnyIPv4) ||
                                  told == QHostAddress(QHostAddress::AnyIPv6);
        const bool isOurs = url.host() == u"localhost" || address.isLoopback() ||
                            url.host() == m_host.toLower() || (isEverywhere && !address.isNull());
        const bool isPlain = url.userInfo().isEmpty() && url.path().isEmpty() && !url.hasQuery() &&
                             !url.hasFragment();
        if (request.get_header_value_count("Host") != 1 || !isOurs || !isPlain ||
            url.port(80) != m_port)
            throw Refusal(403, "invalid_host");
        return host;
    }

    // What other sites can have a browser send us comes as a form or with their origin.
    static void checkSource(const httplib::Request& request, const ServiceRequest& result)
    {
        const QString origin = header(request, "Origin"), site = header(request, "Sec-Fetch-Site");
        const bool isForm = !isApi(result.path);
        if (!isType(request, isForm ? "application/x-www-form-urlencoded" : "application/json"))
            throw Refusal(415, "unsupported_media_type");
        if (request.has_header("Content-Encoding"))
            throw Refusal(415, "unsupported_media_type");
        // Our pages send no referrer, and then browsers call the origin of a form null.
        const bool isOwnOrigin = origin.isEmpty() || origin == result.base ||
                                 (isForm && origin == u"null" && site == u"same-origin");
        if (!isOwnOrigin || (!site.isEmpty() && site != u"same-origin" && site != u"none"))
            throw Refusal(403, "invalid_origin");
    }

    bool answerWithoutBody(const httplib::Request& request, httplib::Response& reply)
    {
        try {
            const ServiceRequest result = requestOf(request);
            if (result.method != ServiceMethod::get)
                return false;
            give(reply, answer(m_service, result));
        } catch (const Refusal& refusal) {
            give(reply, refusalReply(refusal));
        }
        return true;
    }

    void answerWithBody(const httplib::Request& request, httplib::Response& reply,
                        const httplib::ContentReader& reader)
    {
        try {
            ServiceRequest result = requestOf(request);
            checkSource(request, result);
            const qint64 largest = admit(m_service, result);
            const qint64 announced = *announcedBody(request);
            if (announced > largest)
                throw Refusal(413, "too_large");
            const qint64 expected = announced < 0 ? largest : announced;
            const auto receiving = turn(m_receiving, expected, 1);
            result.body = read(reader, announced, largest);
            if (!isApi(result.path))
                result.form = fieldsOf(result.body);
            const auto handling = turn(m_handling, result.body.size(), copiesOfBody);
            give(reply, answer(m_service, result));
        } catch (const Refusal& refusal) {
            give(reply, refusalReply(refusal));
        } catch (const DatabaseError&) {
            give(reply, refusalReply(Refusal(500, "database_unavailable")));
        }
    }

    // Small ones never wait behind large ones.
    static std::optional<DecodeGate::Pass> turn(DecodeGate& gate, qint64 bytes, qint64 copies)
    {
        if (bytes <= smallBody)
            return std::nullopt;
        return gate.enter(bytes * copies);
    }

    static QByteArray read(const httplib::ContentReader& reader, qint64 announced, qint64 largest)
    {
        QByteArray body;
        if (announced == 0)
            return body;    // the library would read until the connection ends
        body.reserve(qsizetype(std::max<qint64>(announced, 0)));
        bool isTooLarge = false;
        const bool isWhole = reader([&](const char* data, size_t size) {
            isTooLarge = body.size() + qint64(size) > largest;
            if (!isTooLarge)
                body.append(data, qsizetype(size));
            return !isTooLarge;
        });
        if (isTooLarge)
            throw Refusal(413, "too_large");
        if (!isWhole)
            throw Refusal(400, "invalid_request", u"the body ended too soon"_s);
        return body;
    }

    Service& m_service;
    QString m_host;
    int m_port = 0;
    std::thread m_listening;
    Connections m_connections;
    DecodeGate m_receiving{receivedAtOnce}, m_handling{handledAtOnce};
};

Server::Server(Service& service, const QString& host)
    : m_http(std::make_unique<Http>(service, host))
{
}

Server::~Server()
{
    stop();
}

bool Server::start(int port, int preferred)
{
    return m_http->start(port, preferred);
}

int Server::port() const
{
    return m_http->port();
}

QString Server::address() const
{
    return m_http->address();
}

void Server::stop()
{
    m_http->end();
}
