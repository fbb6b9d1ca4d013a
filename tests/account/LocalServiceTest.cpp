#include "account/LocalService.h"
#include "account/ServiceRendezvous.h"
#include "platform/HttpClient.h"
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

// The process that has the lock of the data folder.
qint64 processOf(const QTemporaryDir& folder)
{
    const QDir data(folder.filePath(u"service"_s));
    for (const QString& name : data.entryList({u"*.lock"_s}, QDir::Files | QDir::Hidden)) {
        QFile lock(data.filePath(name));
        if (lock.open(QIODevice::ReadOnly))
            return lock.readLine().trimmed().toLongLong();
    }
    return 0;
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
    EXPECT_EQ(awaited(first.address()), address);    // known by now
    EXPECT_EQ(statusOf(address), 200);

    const qint64 process = processOf(folder);
    ASSERT_GT(process, 0);
    ASSERT_EQ(::kill(pid_t(process), SIGKILL), 0);
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
    EXPECT_THROW(awaited(absent.address()), TransportError);

    auto leaving = std::make_unique<LocalService>(placeIn(folder));
    QCoro::Task<QUrl> waiting = leaving->address();
    leaving.reset();
    EXPECT_THROW(awaited(std::move(waiting)), TransportError);
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
