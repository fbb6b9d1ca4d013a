#include "tests/service/TestService.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpSocket>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// What comes back for these bytes until the service ends the connection.
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

TEST(Server, answersSoonWhileManyConnectionsAreIdleOrSlow)
{
    TestService service;
    std::vector<std::unique_ptr<QTcpSocket>> idle;
    for (int i = 0; i < 100; ++i) {
        idle.push_back(std::make_unique<QTcpSocket>());
        idle.back()->connectToHost(QHostAddress(QHostAddress::LocalHost), quint16(service.port()));
        ASSERT_TRUE(idle.back()->waitForConnected());
        if (i % 2 == 0) {
            idle.back()->write("GET / HT");
            idle.back()->flush();
        }
    }
    QElapsedTimer watch;
    watch.start();
    EXPECT_EQ(service.get("/").status, 200);
    // Far less than the time after which slow ones are given up.
    EXPECT_LT(watch.elapsed(), 5000);
}
