#include "tests/service/TestService.h"

#include "service/Attempts.h"
#include "service/http/Connections.h"
#include "service/http/MemoryGate.h"
#include "service/store/Mail.h"
#include "tests/Nobody.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Sends `bytes`, in which HOST and PORT are replaced by the service's. Returns all that the service
// sends until it closes the connection.
QByteArray raw(const TestService& service, QByteArray bytes)
{
    bytes.replace("HOST", "127.0.0.1:PORT");
    bytes.replace("PORT", QByteArray::number(service.port()));
    QTcpSocket socket;
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), quint16(service.port()));
    socket.waitForConnected();
    socket.write(bytes);
    socket.waitForBytesWritten();
    QByteArray all;
    while (socket.state() == QAbstractSocket::ConnectedState || socket.bytesAvailable() > 0) {
        if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(5000))
            break;
        all += socket.readAll();
    }
    return all;
}

std::unique_ptr<QTcpSocket> connectedTo(const TestService& service)
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(QHostAddress(QHostAddress::LocalHost), quint16(service.port()));
    EXPECT_TRUE(socket->waitForConnected());
    return socket;
}

QByteArray statusOf(const QByteArray& reply)
{
    return reply.mid(9, 3);
}

}    // namespace

TEST(Server, refusesWhatItShouldNotAnswer)
{
    const TestService service;
    const QByteArray json = "Content-Type: application/json\r\n";
    const struct {
        const char* label;
        QByteArray request, status;
    } cases[]{
        {"ours", "GET / HTTP/1.1\r\nHost: HOST\r\n\r\n", "200"},
        {"another name", "GET / HTTP/1.1\r\nHost: malo.example:PORT\r\n\r\n", "403"},
        {"another port", "GET / HTTP/1.1\r\nHost: 127.0.0.1:1\r\n\r\n", "403"},
        {"no name", "GET / HTTP/1.1\r\n\r\n", "403"},
        {"two names", "GET / HTTP/1.1\r\nHost: HOST\r\nHost: HOST\r\n\r\n", "403"},
        {"a name with a user", "GET / HTTP/1.1\r\nHost: x@HOST\r\n\r\n", "403"},
        {"unknown path", "GET /api/nada HTTP/1.1\r\nHost: HOST\r\n\r\n", "404"},
        {"a path with a line end", "POST /a%0Ab HTTP/1.1\r\nHost: HOST\r\n\r\n", "404"},
        {"a long path", "GET /" + QByteArray(7000, 'a') + " HTTP/1.1\r\nHost: HOST\r\n\r\n", "404"},
        {"wrong method", "GET /api/auth/login HTTP/1.1\r\nHost: HOST\r\n\r\n", "405"},
        {"strange method", "DELETE / HTTP/1.1\r\nHost: HOST\r\n\r\n", "405"},
        {"a form to the API",
         "POST /api/auth/login HTTP/1.1\r\nHost: HOST\r\nContent-Type: text/plain\r\n"
         "Content-Length: 2\r\n\r\n{}",
         "415"},
        {"another origin",
         "POST /api/auth/login HTTP/1.1\r\nHost: HOST\r\nOrigin: http://malo.example\r\n" + json +
             "Content-Length: 2\r\n\r\n{}",
         "403"},
        {"another site's form",
         "POST /acceso HTTP/1.1\r\nHost: HOST\r\nOrigin: null\r\nSec-Fetch-Site: cross-site\r\n"
         "Content-Type: application/x-www-form-urlencoded\r\nContent-Length: 1\r\n\r\na",
         "403"},
        {"no JSON",
         "POST /api/auth/login HTTP/1.1\r\nHost: HOST\r\n" + json + "Content-Length: 1\r\n\r\n{",
         "400"},
        {"too large",
         "POST /api/auth/login HTTP/1.1\r\nHost: HOST\r\n" + json +
             "Content-Length: 99999999999\r\n\r\n{}",
         "413"},
        {"no length, so no body", "POST /api/auth/login HTTP/1.1\r\nHost: HOST\r\n" + json + "\r\n",
         "400"},
        {"two lengths",
         "POST /api/auth/login HTTP/1.1\r\nHost: HOST\r\n" + json +
             "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n",
         "400"},
        {"too large in chunks",
         "POST /api/auth/login HTTP/1.1\r\nHost: HOST\r\n" + json +
             "Transfer-Encoding: chunked\r\n\r\n20000\r\n" + QByteArray(0x20000, ' ') +
             "\r\n0\r\n\r\n",
         "413"},
        {"packed",
         "POST /api/auth/login HTTP/1.1\r\nHost: HOST\r\n" + json +
             "Content-Encoding: gzip\r\nContent-Length: 2\r\n\r\n{}",
         "415"},
        {"a part of it", "GET / HTTP/1.1\r\nHost: HOST\r\nRange: bytes=0-1,0-1\r\n\r\n", "200"},
        {"no HTTP", "hola\r\n\r\n", "400"},
    };
    for (const auto& one : cases) {
        QByteArray request = one.request;
        request.replace("HTTP/1.1\r\n", "HTTP/1.1\r\nConnection: close\r\n");
        EXPECT_EQ(statusOf(raw(service, request)), one.status) << one.label;
    }
    EXPECT_FALSE(raw(service, "GET /" + QByteArray(200'000, 'a')).startsWith("HTTP/1.1 2"))
        << "a head without end";
}

TEST(Server, unreadBodyIsNeverTakenForARequest)
{
    const TestService service;
    const QByteArray inner = "GET /estilo.css HTTP/1.1\r\nHost: HOST\r\n\r\n";
    for (const QByteArray begin : {"GET /", "POST /acceso"}) {
        const QByteArray all =
            raw(service, begin + " HTTP/1.1\r\nHost: HOST\r\nContent-Length: " +
                             QByteArray::number(inner.size() + 20) + "\r\n\r\n" + inner);
        EXPECT_EQ(all.count("HTTP/1.1 "), 1) << begin.constData();
    }
}

TEST(Server, answersBesideManyConnectionsThatAreIdleOrSlow)
{
    TestService service;
    std::vector<std::unique_ptr<QTcpSocket>> idle;
    for (int i = 0; i < 300; ++i) {
        idle.push_back(connectedTo(service));
        if (i % 3 > 0) {
            idle.back()->write("GET / HT");
            idle.back()->flush();
        }
    }
    EXPECT_EQ(service.get("/").status, 200);
}

TEST(Connections, theLongestIdleMakesRoomAndWhatIsUnderWayStays)
{
    Connections connections;
    const auto isEnded = [](int socket) {
        char byte = 0;
        return ::recv(socket, &byte, 1, MSG_DONTWAIT) == 0;
    };
    std::vector<std::array<int, 2>> pairs(193);
    const auto add = [&](size_t i, const ConnectionPeer& peer) {
        return ::socketpair(AF_UNIX, SOCK_STREAM, 0, pairs[i].data()) == 0 &&
               connections.add(pairs[i][0], peer);
    };
    const ConnectionPeer own{u"user 1"_s, true}, other{u"user 2"_s, false};
    for (size_t i = 0; i < 192; ++i)
        ASSERT_TRUE(add(i, own)) << i;
    connections.setState(pairs[0][0], Connections::State::busy);
    connections.setState(pairs[1][0], Connections::State::receiving);
    ASSERT_TRUE(add(192, own));
    for (size_t i = 0; i < 193; ++i)
        EXPECT_EQ(isEnded(pairs[i][1]), i == 2) << i;
    for (size_t i = 2; i < 192; ++i)
        connections.remove(pairs[i][0]);

    std::vector<std::array<int, 2>> others(65);
    pairs.insert(pairs.end(), others.begin(), others.end());
    for (size_t i = 193; i < 257; ++i)
        EXPECT_TRUE(add(i, other)) << i;
    EXPECT_FALSE(add(257, other)) << "another user has some, not all";
    for (const auto& pair : pairs) {
        ::close(pair[0]);
        ::close(pair[1]);
    }
}

TEST(Server, ofOneUserHearsNobodyElse)
{
    if (!canBeNobody())
        GTEST_SKIP() << "only root can act as another user";
    TestService service;
    const auto upload = connectedTo(service);
    const QByteArray body = R"({"email":"ana@ejemplo.es","password":"una-clave"})";
    upload->write(
        "POST /api/auth/login HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(service.port()) +
        "\r\nContent-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size()) +
        "\r\n\r\n" + body.left(10));
    upload->waitForBytesWritten();
    const std::string request =
        "GET / HTTP/1.1\r\nHost: " + service.address().substr(7) + "\r\n\r\n";
    for (int i = 0; i < 200; ++i)
        ASSERT_EQ(requestAsNobody(service.port(), request.c_str(), 1 + i % 100), 0);
    upload->write(body.mid(10));
    // The answer may come in pieces.
    QByteArray answer;
    while (!answer.contains("invalid_credentials") && upload->waitForReadyRead())
        answer += upload->readAll();
    EXPECT_TRUE(answer.contains("invalid_credentials")) << answer.constData();
}

TEST(Server, ofEverybodyCountsNeighboursByTheirUser)
{
    if (!canBeNobody())
        GTEST_SKIP() << "only root can act as another user";
    TestService service(u"127.0.0.1"_s, ServiceAudience::everybody);
    service.signUp();
    const std::string host = "Host: " + service.address().substr(7) + "\r\n";
    const std::string wrong = R"({"email":"ana@ejemplo.es","password":"adivinada"})";
    const std::string guess =
        "POST /api/auth/login HTTP/1.1\r\n" + host +
        "Content-Type: application/json\r\nContent-Length: " + std::to_string(wrong.size()) +
        "\r\n\r\n" + wrong;
    service.now += 1;
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(requestAsNobody(service.port(), guess.c_str(), 1 + i), 4);
    const TestService::Json again{{"email", "ana@ejemplo.es"}, {"password", "mal"}};
    EXPECT_EQ(service.post("/api/auth/login", again).error(), "invalid_credentials")
        << "the user's own attempts are not used up";
    Attempts& attempts = service.service().signInAttempts();
    EXPECT_FALSE(attempts.allow(u"user 65534 ana@ejemplo.es"_s, service.now)) << "from any address";
    const std::string mails = "GET /correo HTTP/1.1\r\n" + host + "\r\n";
    EXPECT_EQ(requestAsNobody(service.port(), mails.c_str()), 4);
    const std::string start = "GET / HTTP/1.1\r\n" + host + "\r\n";
    EXPECT_EQ(requestAsNobody(service.port(), start.c_str()), 2);
}

TEST(Server, heardEverywhereItTakesNoForeignNames)
{
    const TestService service(u"0.0.0.0"_s);
    EXPECT_TRUE(service.address().starts_with("http://127.0.0.1:")) << "what clients accept";
    for (const char* host :
         {"192.0.2.1:PORT", "0.0.0.0:PORT", "[2001:db8::1]:PORT", "malo.example"})
        EXPECT_EQ(
            statusOf(raw(service, QByteArray("GET / HTTP/1.1\r\nConnection: close\r\nHost: ") +
                                      host + "\r\n\r\n")),
            "403")
            << host;
    for (const char* host : {"localhost:PORT", "127.0.0.1:PORT"})
        EXPECT_EQ(
            statusOf(raw(service, QByteArray("GET / HTTP/1.1\r\nConnection: close\r\nHost: ") +
                                      host + "\r\n\r\n")),
            "200")
            << host;
}

TEST(Server, pagesOfTheUserAreNotPassedOn)
{
    TestService service;
    const QDir mails = service.service().folder(u"correo"_s);
    ASSERT_TRUE(storeMail(mails, u"ana@ejemplo.es"_s, u"Hola"_s, u"Hola"_s, service.now));
    const QByteArray mail = "/correo/" + mails.entryList(QDir::Files).value(0).toLatin1();
    for (const QByteArray& path :
         {QByteArray("/correo"), mail, QByteArray("/api/auth/oauth/google?client=x")}) {
        const QByteArray own = "GET " + path + " HTTP/1.1\r\nConnection: close\r\nHost: HOST\r\n";
        EXPECT_EQ(statusOf(raw(service, own + "\r\n")), "200") << path.constData();
        for (const char* mark :
             {"X-Forwarded-For: 127.0.0.1", "Forwarded: for=1.2.3.4", "Via: x"}) {
            const QByteArray reply = raw(service, own + mark + "\r\n\r\n");
            EXPECT_EQ(statusOf(reply), "403") << path.constData() << mark;
            EXPECT_TRUE(reply.contains("text/html")) << path.constData() << mark;
        }
    }
}

TEST(MemoryGate, firstGoesOnAndOthersDoNotWaitForEver)
{
    std::atomic_bool isEnding = false;
    MemoryGate gate(100, std::chrono::milliseconds(10), isEnding);
    MemoryGate::Pass first(gate), second(gate);
    EXPECT_TRUE(first.grow(50) && second.grow(50));
    EXPECT_FALSE(second.grow(1)) << "it waits for the first";
    EXPECT_TRUE(first.grow(60)) << "which must not wait for it";
    first.stopGrowing();
    EXPECT_FALSE(second.grow(1)) << "what the first holds is still held";
    first.release();
    EXPECT_TRUE(second.grow(70));
    MemoryGate patient(100, std::chrono::minutes(10), isEnding);
    MemoryGate::Pass all(patient), late(patient);
    EXPECT_TRUE(all.grow(100));
    isEnding = true;
    EXPECT_FALSE(late.grow(1)) << "nobody waits when the service ends";
}

TEST(Attempts, strangersWithManyNamesKeepNobodyOut)
{
    Attempts attempts(1, 1000);
    for (int i = 0; i <= 10'000; ++i)
        EXPECT_TRUE(attempts.allow(QString::number(i), i < 9000 ? 1 : 2));
    EXPECT_FALSE(attempts.allow(u"9999"_s, 2)) << "the newest are still counted";
}
