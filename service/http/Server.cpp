#include "service/http/Server.h"

#include "service/Routes.h"
#include "service/Service.h"
#include "service/Visit.h"
#include "service/http/ConnectionPeer.h"
#include "service/http/Connections.h"
#include "service/http/MemoryGate.h"
#include "service/http/PacedStream.h"
#include "service/http/RequestParts.h"
#include "service/http/Threads.h"
#include "service/store/Texts.h"

#include <poll.h>
#include <sys/socket.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr size_t mostThreads = 256, mostWaiting = 256;
constexpr auto keepAlive = 1000ms, endingTime = 2000ms, afterEnding = 1000ms;
constexpr auto serverLookAround = 1000ms, serverRetryPause = 10ms;
constexpr int mostRequests = 1000;    // on one connection
constexpr int waitingConnections = 512;
constexpr qsizetype longestPath = 512;

constexpr size_t largestBody = 161 << 20;
// Memory budgets in bytes: for all bodies being received and for all bodies being handled. The
// oldest request may exceed its budget, see MemoryGate.
constexpr qint64 receivedAtOnce = 256 << 20, handledAtOnce = 128 << 20;
// Handling a body takes `copiesOfBody` times its size in memory: for the text, the parsed text, the
// record and the decoded contents. Bodies of up to `uncountedBody` bytes are not counted; larger
// ones are received in steps of `bodyStep` bytes.
constexpr qint64 copiesOfBody = 6, uncountedBody = 1 << 20, bodyStep = 1 << 20;
constexpr auto waitForMemory = 20'000ms;

// The connection that this thread serves, and the program at its other end.
thread_local socket_t servedSocket = INVALID_SOCKET;
thread_local ConnectionPeer servedPeer;
// Whether the client of the thread's current request can still receive an answer.
thread_local bool canAnswer = true;

// Returns freed memory to the system: glibc would keep blocks as small as those of a received body.
void giveMemoryBack()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

}    // namespace

class Server::Http final : public httplib::Server {
public:
    Http(Service& service, const QString& host) : m_service(service), m_host(host)
    {
        // Replaces the library's default, which lets two programs share a port (SO_REUSEPORT).
        set_socket_options([](socket_t socket) {
            const int yes = 1;
            ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
        });
        set_tcp_nodelay(true);
        set_keep_alive_timeout(keepAlive / 1s);
        set_keep_alive_max_count(mostRequests);
        // The routes set lower limits of their own.
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
        // Lengthens the queue of connections not yet accepted. The library's holds five, and a
        // sixth client would have to wait a second.
        ::listen(svr_sock_, waitingConnections);
        m_service.setAddress(address());
        m_threads.emplace(mostThreads, mostWaiting);
        m_listening = std::thread([this] { acceptAll(); });
        return true;
    }

    // Stops the server. Returns whether all connections have ended.
    bool end()
    {
        if (m_listening.joinable()) {
            m_service.isEnding() = true;
            ::shutdown(svr_sock_, SHUT_RDWR);
            m_listening.join();
            ::close(svr_sock_.exchange(INVALID_SOCKET));
            m_connections.endWaiting();
            if (!m_connections.waitUntilNone(endingTime))
                m_connections.endAll();
        }
        return m_connections.waitUntilNone(afterEnding);
    }

    int port() const { return m_port; }
    QString address() const
    {
        const QString host = loopbackFor(m_host);
        const QString name = host.contains(u':') ? u"[%1]"_s.arg(host) : host;
        return u"http://%1:%2"_s.arg(name).arg(m_port);
    }

private:
    // Replaces the library's loop, which ends at the first failure and cannot refuse a peer.
    void acceptAll()
    {
        while (!m_service.isEnding()) {
            pollfd poll{svr_sock_, POLLIN, 0};
            if (::poll(&poll, 1, int(serverLookAround / 1ms)) <= 0)
                continue;
            const socket_t socket = ::accept(svr_sock_, nullptr, nullptr);
            if (socket >= 0)
                take(socket);
            else
                std::this_thread::sleep_for(serverRetryPause);    // too many open files, perhaps
        }
    }

    void take(socket_t socket)
    {
        const ConnectionPeer peer = peerOf(socket);
        const bool isWelcome = peer.isOwnUser || m_service.audience() == ServiceAudience::everybody;
        if (!isWelcome || !m_connections.add(socket, peer)) {
            ::close(socket);
        } else if (!m_threads->enqueue([this, socket, peer] { serve(socket, peer); })) {
            m_connections.remove(socket);
            ::close(socket);
        }
    }

    // Replaces the library's loop, whose time limit starts again with every byte that arrives.
    void serve(socket_t socket, const ConnectionPeer& peer)
    {
        servedSocket = socket;
        servedPeer = peer;
        PacedStream stream(socket);
        for (int left = mostRequests; left > 0 && !m_service.isEnding(); --left) {
            if (!stream.waitForRequest(keepAlive))
                break;
            const bool mayGoOn = answerOne(stream, left == 1);
            if (!mayGoOn)
                break;
            m_connections.setState(socket, Connections::State::waiting);
        }
        stream.drain();
        m_connections.remove(socket);
        ::close(socket);
    }

    // Returns whether another request may follow on the connection.
    bool answerOne(PacedStream& stream, bool isLast)
    {
        std::optional<qint64> announced;
        bool mayGoOn = false, isClosed = false;
        stream.beginRequest();
        const bool isWhole =
            process_request(stream, isLast, isClosed, [&](httplib::Request& request) {
                stream.headHasEnded();
                announced = announcedBody(request);
                const bool isOpen = m_connections.setState(
                    stream.socket(),
                    announced == 0 ? Connections::State::busy : Connections::State::receiving);
                canAnswer = isOpen && !m_service.isEnding();
                // Drops the headers with which a hostile client could make the library cut an
                // answer into many ranges, or compress it.
                request.ranges.clear();
                request.headers.erase("Accept-Encoding");
                // Gives each call of the API a connection of its own. A client that sends a call on
                // a kept connection just as we close it cannot know whether the call was carried
                // out, and calls can move credits.
                if (isApi(QString::fromStdString(request.path))) {
                    request.headers.erase("Connection");
                    request.headers.emplace("Connection", "close");
                }
                mayGoOn = request.get_header_value("Connection") != "close";
            });
        if (qint64(stream.bodyBytes()) > uncountedBody)
            giveMemoryBack();
        // Closes the connection if the body was not read to its end: the library would take the
        // rest of it for the next request.
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
        if (!canAnswer)
            throw Refusal(503, "service_busy");
        ServiceRequest result;
        const auto method = methodOf(request);
        if (!method)
            throw Refusal(405, "method_not_allowed");
        if (!announcedBody(request))
            throw Refusal(400, "invalid_request", u"the length of the body"_s);
        result.method = *method;
        result.path = QString::fromStdString(request.path);
        // Refuses line breaks too, which the pattern "/.*" of the handlers does not match.
        if (result.path.size() > longestPath || !isPrintable(result.path))
            throw Refusal(404, "not_found");
        const auto host = ownHost(request, m_host, m_port);
        if (!host)
            throw Refusal(403, "invalid_host");
        result.base = u"http://"_s + *host;
        for (const auto& [name, value] : request.params) {
            const QString key = QString::fromStdString(name);
            if (!result.query.contains(key))
                result.query.insert(key, QString::fromStdString(value));
        }
        result.cookies = cookiesOf(request);
        result.source = servedPeer.source;
        result.isLocal = servedPeer.isOwnUser && !wasPassedOn(request);
        return result;
    }

    // Refuses requests that another site can make a browser send: a form to the API, or a request
    // with that site's origin.
    static void checkOrigin(const httplib::Request& request, const ServiceRequest& result)
    {
        const QString origin = headerOf(request, "Origin"),
                      site = headerOf(request, "Sec-Fetch-Site");
        const bool isForm = !isApi(result.path);
        if (!isType(request, isForm ? "application/x-www-form-urlencoded" : "application/json"))
            throw Refusal(415, "unsupported_media_type");
        if (request.has_header("Content-Encoding"))
            throw Refusal(415, "unsupported_media_type");
        // Our pages forbid the referrer, and browsers then send "null" as the origin of their
        // forms.
        const bool isOwnOrigin = origin.isEmpty() || origin == result.base ||
                                 (isForm && origin == u"null" && site == u"same-origin");
        if (!isOwnOrigin || (!site.isEmpty() && site != u"same-origin" && site != u"none"))
            throw Refusal(403, "invalid_origin");
    }

    ServiceReply refusedReply(const httplib::Request& request, const Refusal& refusal)
    {
        ServiceRequest asked;
        asked.path = QString::fromStdString(request.path);
        return refused(m_service, asked, refusal);
    }

    bool answerWithoutBody(const httplib::Request& request, httplib::Response& reply)
    {
        try {
            const ServiceRequest result = requestOf(request);
            if (result.method != ServiceMethod::get)
                return false;
            give(reply, answer(m_service, result));
        } catch (const Refusal& refusal) {
            give(reply, refusedReply(request, refusal));
        }
        return true;
    }

    void answerWithBody(const httplib::Request& request, httplib::Response& reply,
                        const httplib::ContentReader& reader)
    {
        try {
            ServiceRequest result = requestOf(request);
            checkOrigin(request, result);
            const qint64 largest = admit(m_service, result);
            const qint64 announced = *announcedBody(request);
            if (announced > largest)
                throw Refusal(413, "too_large");
            MemoryGate::Pass receiving(m_receiving), handling(m_handling);
            result.body = read(reader, announced, largest, receiving);
            receiving.stopGrowing();
            m_connections.setState(servedSocket, Connections::State::busy);
            if (!isApi(result.path))
                result.form = fieldsOf(result.body);
            // Small bodies are not counted, so that they never wait behind large ones.
            if (result.body.size() > uncountedBody &&
                !handling.grow(result.body.size() * copiesOfBody))
                throw Refusal(503, "service_busy");
            result.releaseBody = [&] {
                result.body = {};
                receiving.release();
                handling.release();
            };
            give(reply, answer(m_service, result));
        } catch (const Refusal& refusal) {
            give(reply, refusedReply(request, refusal));
        } catch (const DatabaseError&) {
            give(reply, refusedReply(request, Refusal(500, "database_unavailable")));
        }
    }

    // Reads the body, asking for memory as the bytes arrive: a client that only announces a large
    // body keeps nobody waiting.
    static QByteArray read(const httplib::ContentReader& reader, qint64 announced, qint64 largest,
                           MemoryGate::Pass& memory)
    {
        QByteArray body;
        if (announced == 0)
            return body;    // the library would read until the connection ends
        body.reserve(qsizetype(std::max<qint64>(announced, 0)));
        bool isTooLarge = false, isRefused = false;
        qint64 allowed = uncountedBody;
        const bool isWhole = reader([&](const char* data, size_t size) {
            const qint64 after = body.size() + qint64(size);
            isTooLarge = after > largest;
            while (!isTooLarge && !isRefused && after > allowed) {
                isRefused = !memory.grow(bodyStep);
                allowed += bodyStep;
            }
            if (isTooLarge || isRefused)
                return false;
            body.append(data, qsizetype(size));
            return true;
        });
        if (isTooLarge)
            throw Refusal(413, "too_large");
        if (isRefused)
            throw Refusal(503, "service_busy");
        if (!isWhole)
            throw Refusal(400, "invalid_request", u"the body ended too soon"_s);
        return body;
    }

    Service& m_service;
    QString m_host;
    int m_port = 0;
    std::thread m_listening;
    Connections m_connections;
    MemoryGate m_receiving{receivedAtOnce, waitForMemory, m_service.isEnding()};
    MemoryGate m_handling{handledAtOnce, waitForMemory, m_service.isEnding()};
    // Declared last to be destroyed first: the jobs use the other members.
    std::optional<Threads> m_threads;
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

bool Server::stop()
{
    return m_http->end();
}
