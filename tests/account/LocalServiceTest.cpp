#include "account/LocalService.h"
#include "account/ServiceRendezvous.h"
#include "platform/HttpClient.h"
#include "tests/Nobody.h"
#include "tests/account/Awaited.h"

#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

LocalService::Place placeIn(const QTemporaryDir& folder)
{
    LocalService::Place place;
    place.program = QStringLiteral(MOLTIVA_SERVICE_PROGRAM);
    place.data = folder.filePath(u"service"_s);
    place.administrator = u"admin@moltiva.local"_s;
    return place;
}

int statusOf(const QUrl& page)
{
    HttpClient client;
    HttpRequest request;
    request.url = page;
    return awaited(client.send(request)).status;
}

// The id of the process that listens at the socket of the data folder.
pid_t processOf(const QTemporaryDir& folder)
{
    QLocalSocket socket;
    socket.connectToServer(serviceSocketPath(folder.filePath(u"service"_s)));
    ucred listener = {};
    socklen_t size = sizeof(listener);
    const bool isKnown =
        socket.waitForConnected() && ::getsockopt(int(socket.socketDescriptor()), SOL_SOCKET,
                                                  SO_PEERCRED, &listener, &size) == 0;
    return isKnown ? listener.pid : 0;
}

QString problemOf(LocalService& service)
{
    try {
        awaited(service.address());
    } catch (const TransportError& error) {
        return error.text();
    }
    return {};
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

}    // namespace

TEST(LocalService, IsStartedOnceForAllAndAnewWhenItIsGone)
{
    const QTemporaryDir folder;
    LocalService first(placeIn(folder)), second(placeIn(folder));
    QCoro::Task<QUrl> one = first.address(), again = first.address(), other = second.address();
    const QUrl address = awaited(std::move(one));
    EXPECT_EQ(awaited(std::move(again)), address);
    EXPECT_EQ(awaited(std::move(other)), address);
    EXPECT_EQ(awaited(first.address()), address);    // remembered by `first`
    EXPECT_EQ(statusOf(address), 200);

    const pid_t process = processOf(folder);
    ASSERT_GT(process, 0);
    ASSERT_EQ(::kill(process, SIGKILL), 0);
    QElapsedTimer watch;
    watch.start();
    while (!first.knownAddress().isEmpty() && watch.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(statusOf(awaited(first.address())), 200);
    EXPECT_NE(processOf(folder), process);
}

TEST(LocalService, TellsWhenThereIsNoProgramAndLetsGoOfWhoWaits)
{
    const QTemporaryDir folder;
    LocalService::Place place = placeIn(folder);
    place.program = folder.filePath(u"absent"_s);
    LocalService absent(place);
    EXPECT_TRUE(problemOf(absent).contains(place.program));

    auto leaving = std::make_unique<LocalService>(placeIn(folder));
    QCoro::Task<QUrl> waiting = leaving->address();
    leaving.reset();
    EXPECT_THROW(awaited(std::move(waiting)), TransportError);
}

TEST(LocalService, TellsAtOnceWhyItCouldNotStart)
{
    const QTemporaryDir folder;
    LocalService::Place place = placeIn(folder);
    place.longestStart = std::chrono::hours(1);
    QDir().mkpath(place.data);
    writeFile(place.data + u"/servicio.sqlite"_s, QByteArray(9000, 'x'));
    LocalService service(place);
    EXPECT_TRUE(problemOf(service).contains(u"dañada. Se ha apartado"_s));
    EXPECT_EQ(problemOf(service), QString()) << "the user knows, and another one begins";
    // If the service's program fails to run, the problem ends with what the program wrote to its
    // log.
    const QTemporaryDir other;
    place = placeIn(other);
    place.program = other.filePath(u"roto"_s);
    place.longestStart = std::chrono::hours(1);
    writeFile(place.program, "#!/bin/sh\necho falta una biblioteca >&2\nexit 127\n");
    QFile::setPermissions(place.program, QFile::ReadOwner | QFile::ExeOwner);
    LocalService broken(place);
    EXPECT_TRUE(problemOf(broken).endsWith(u": falta una biblioteca"_s));
}

TEST(LocalService, TrustsNoOtherUserInItsPlace)
{
    if (!canBeNobody())
        GTEST_SKIP() << "only root can act as another user";
    const QTemporaryDir folder;
    const LocalService::Place place = placeIn(folder);
    ASSERT_TRUE(QDir().mkpath(place.data));
    const NobodyListening stranger(serviceSocketPath(place.data).toLocal8Bit().constData(),
                                   "http://127.0.0.1:9\n");
    LocalService service(place);
    EXPECT_TRUE(problemOf(service).contains(u"otro usuario"_s));
}

TEST(LocalService, GivesUpOnOneThatDoesNotAnswerAsItShould)
{
    for (const QByteArray& line :
         {QByteArray(), QByteArray("http://192.0.2.1:80\n"), QByteArray(500, 'x')}) {
        const QTemporaryDir folder;
        LocalService::Place place = placeIn(folder);
        place.longestStart = std::chrono::milliseconds(300);
        ASSERT_TRUE(QDir().mkpath(place.data));
        QLocalServer strange;
        ASSERT_TRUE(strange.listen(serviceSocketPath(place.data)));
        QObject::connect(&strange, &QLocalServer::newConnection,
                         [&] { strange.nextPendingConnection()->write(line); });
        LocalService service(place);
        std::stop_source stop;
        QCoro::Task<QUrl> stopped = service.address(stop.get_token());
        stop.request_stop();
        EXPECT_THROW(awaited(std::move(stopped)), TransportError);
        EXPECT_THROW(awaited(service.address()), TransportError);
    }
}
