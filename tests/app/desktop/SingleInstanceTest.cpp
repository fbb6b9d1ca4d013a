#include "app/desktop/SingleInstance.h"

#include "tests/Nobody.h"
#include "tests/RuntimeFolder.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <future>
#include <thread>

using namespace Qt::StringLiterals;
using Outcome = InstanceClaim::Outcome;

namespace {

class SingleInstanceTest : public testing::Test {
protected:
    const QTemporaryDir folder;
    const RuntimeFolder runtime{folder.path()};
};

QString socketIn(const QTemporaryDir& folder)
{
    const QDir runtime(folder.path());
    return runtime.filePath(
        runtime.entryList({u"moltiva-*.socket"_s}, QDir::AllEntries | QDir::System).value(0));
}

}    // namespace

TEST_F(SingleInstanceTest, startsAtOnceEndAsOneWithEverythingHandedOver)
{
    // A lock file as an older version leaves it when killed, with the id of a process that runs
    // now.
    QFile lock(folder.filePath(u"moltiva.lock"_s));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.write("1\nmoltiva\n\n");
    lock.close();

    const InstanceClaim claim = claimInstance(folder.path(), {});
    ASSERT_EQ(claim.outcome, Outcome::first);
    std::atomic<int> handed = 0;
    std::vector<std::thread> starts;
    starts.reserve(10);
    for (int i = 0; i < 10; ++i) {
        starts.emplace_back([&, i] {
            const QList<QUrl> own{QUrl::fromLocalFile(u"/fotos/%1.jpg"_s.arg(i)),
                                  QUrl(u"moltiva://pago?n=%1"_s.arg(i))};
            handed += claimInstance(folder.path(), {own, "ficha"}).outcome == Outcome::handedOver;
        });
    }
    QTest::qSleep(100);    // the starts wait until `first` listens
    SingleInstance first(folder.path());
    QSet<QUrl> opened;
    int tokens = 0;
    QObject::connect(&first, &SingleInstance::handedOver, [&](const OpenRequest& request) {
        opened += QSet(request.toOpen.begin(), request.toOpen.end());
        tokens += request.activationToken == "ficha";
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return handed == 10; }, 20000));
    for (std::thread& start : starts)
        start.join();
    EXPECT_EQ(opened.size(), 20);
    EXPECT_EQ(tokens, 10);
    EXPECT_EQ(QFile::permissions(socketIn(folder)) &
                  (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
              QFile::Permissions());
}

TEST_F(SingleInstanceTest, nothingIsHandedToAnotherUserWhoListensThere)
{
    if (!canBeNobody())
        GTEST_SKIP() << "only root can act as another user";
    InstanceClaim claim = claimInstance(folder.path(), {});
    const QString path = [&] {
        const SingleInstance learning(folder.path());
        return socketIn(folder);
    }();
    NobodyListening stranger(path.toLocal8Bit().constData(), "1");
    auto later = std::async(std::launch::async, [&] {
        return claimInstance(folder.path(), {{QUrl(u"moltiva://auth?token=secreto"_s)}}).outcome;
    });
    EXPECT_EQ(stranger.heardBytes(), 0);
    claim.lock.reset();
    EXPECT_EQ(later.get(), Outcome::first);
}

TEST_F(SingleInstanceTest, nonsenseOnTheSocketOpensNothing)
{
    SingleInstance first(folder.path());
    QSignalSpy opened(&first, &SingleInstance::handedOver);
    QLocalSocket socket;
    socket.connectToServer(socketIn(folder));
    ASSERT_TRUE(socket.waitForConnected());
    socket.write(QByteArray(4, '\x7f') + QByteArray(17 << 20, 'x'));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return socket.state() == QLocalSocket::UnconnectedState; }, 30000));
    EXPECT_EQ(opened.count(), 0);
}

TEST(SingleInstance, argumentsAreFilesUnlessTheyAreAddresses)
{
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    QFile(folder.filePath(u"a:b.jpg"_s)).open(QIODevice::WriteOnly);
    const QList<QUrl> urls = addressesOf({u"foto 1.jpg"_s, u"a:b.jpg"_s, u"moltiva://pago?ok=1"_s,
                                          u"file:///tmp/x%20y.jpg"_s,
                                          u"moltiva://auth?token=a b|c%"_s, u"moltiva://[auth"_s});
    const QString here = QDir::currentPath();
    EXPECT_EQ(urls[0], QUrl::fromLocalFile(here + u"/foto 1.jpg"_s));
    EXPECT_EQ(urls[1], QUrl::fromLocalFile(here + u"/a:b.jpg"_s));
    EXPECT_EQ(urls[2].scheme(), u"moltiva"_s);
    EXPECT_EQ(urls[3].toLocalFile(), u"/tmp/x y.jpg"_s);
    EXPECT_EQ(urls[4].scheme(), u"moltiva"_s);
    EXPECT_FALSE(urls[5].isValid() || urls[5].isLocalFile());
}
