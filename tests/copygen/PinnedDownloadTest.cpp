#include "copygen/PinnedDownload.h"

#include "tests/copygen/Installing.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

struct Download {
    Download() { server.files = {{"file", someBytes(100'000, "file")}}; }

    FetchOutcome fetch(const PinnedFile& pin) { return QCoro::waitFor(fetchPinned(pin, path)); }
    FetchOutcome fetch() { return fetch(pinOf(server, "file")); }
    bool isWhole() const { return contentOf(path) == server.files["file"]; }
    qint64 partSize() const { return QFileInfo(path + u".part"_s).size(); }

    QTemporaryDir folder;
    FileServer server;
    QString path = folder.filePath(u"file"_s);
};

TEST(PinnedDownload, aBrokenConnectionGoesOnAndFetchesNoByteTwice)
{
    Download trial;
    // Qt may send a request again by itself when its connection ends early, so the bytes that the
    // server sends are not counted.
    trial.server.asked = [&](qint64 from) { EXPECT_EQ(from, trial.partSize()); };
    trial.server.stopAfter(30'000, FileServer::Stop::closesConnection);
    EXPECT_EQ(trial.fetch().status, 1);    // the second attempt brings nothing
    EXPECT_EQ(trial.partSize(), 30'000);
    EXPECT_FALSE(QFile::exists(trial.path));

    trial.server.letGo();
    EXPECT_EQ(trial.fetch().status, 0);
    EXPECT_TRUE(trial.isWhole());
    EXPECT_FALSE(QFile::exists(trial.path + u".part"_s));

    const int requests = trial.server.requests;
    EXPECT_EQ(trial.fetch().status, 0);
    EXPECT_EQ(trial.server.requests, requests);
}

TEST(PinnedDownload, aServerWithoutRangesIsReadPastWhatIsStored)
{
    Download trial;
    trial.server.hasRanges = false;
    writeFile(trial.path + u".part"_s, trial.server.files["file"].first(70'000));
    EXPECT_EQ(trial.fetch().status, 0);
    EXPECT_TRUE(trial.isWhole());
}

TEST(PinnedDownload, aPartThatIsALinkIsNotWrittenThrough)
{
    Download trial;
    const QString foreign = trial.folder.filePath(u"foreign"_s);
    writeFile(foreign, "of somebody else");
    ASSERT_TRUE(QFile::link(foreign, trial.path + u".part"_s));
    EXPECT_EQ(trial.fetch().status, 0);
    EXPECT_TRUE(trial.isWhole());
    EXPECT_FALSE(QFileInfo(trial.path).isSymLink());
    EXPECT_EQ(contentOf(foreign), "of somebody else");
}

TEST(PinnedDownload, anotherFileIsRefusedAndADamagedPartIsFetchedAnew)
{
    Download trial;
    PinnedFile other = pinOf(trial.server, "file");
    other.sha256 = QString(64, u'0');
    EXPECT_EQ(trial.fetch(other).status, installWrongFile);
    EXPECT_FALSE(QFile::exists(trial.path));
    EXPECT_EQ(trial.partSize(), 0);

    writeFile(trial.path + u".part"_s, QByteArray(40'000, 'x'));
    EXPECT_EQ(trial.fetch().status, installWrongFile);
    EXPECT_EQ(trial.fetch().status, 0);
    EXPECT_TRUE(trial.isWhole());

    // A file of the right size that holds something else.
    writeFile(trial.path, QByteArray(100'000, 'x'));
    EXPECT_EQ(trial.fetch().status, 0);
    EXPECT_TRUE(trial.isWhole());
}

TEST(PinnedDownload, answersThatAreNotTheFileLeaveWhatIsStored)
{
    const QByteArray page = "<html>Inicia sesión en la red</html>";
    const QByteArray length = QByteArray::number(page.size());
    const std::pair<QByteArray, int> rows[] = {
        {"HTTP/1.1 200 OK\r\nContent-Length: " + length + "\r\n\r\n" + page, installWrongFile},
        {"HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + page, installWrongFile},
        {"HTTP/1.1 206 OK\r\nContent-Range: bytes 0-99/100\r\nContent-Length: 100\r\n\r\n" +
             QByteArray(100, 'x'),
         installWrongFile},
        {"HTTP/1.1 416 X\r\nContent-Length: 0\r\n\r\n", installWrongFile},
        {"HTTP/1.1 404 X\r\nContent-Length: 0\r\n\r\n", 1},
        {"HTTP/1.1 503 X\r\nContent-Length: 0\r\n\r\n", 1},
        {"nothing of HTTP\r\n\r\n", 1},
        {"", 1},
        {"HTTP/1.1 302 X\r\nLocation: http://example.com/file\r\nContent-Length: 0\r\n\r\n", 1},
        {"HTTP/1.1 302 X\r\nLocation: file:///etc/passwd\r\nContent-Length: 0\r\n\r\n", 1},
        {"HTTP/1.1 302 X\r\nLocation: /file\r\nContent-Length: 0\r\n\r\n", 1},    // for ever
    };
    for (const auto& [reply, status] : rows) {
        Download trial;
        writeFile(trial.path + u".part"_s, trial.server.files["file"].first(70'000));
        trial.server.replies["file"] = reply;
        const FetchOutcome outcome = trial.fetch();
        EXPECT_EQ(outcome.status, status) << reply.constData();
        EXPECT_FALSE(outcome.reason.isEmpty());
        EXPECT_EQ(trial.partSize(), 70'000) << reply.constData();
        EXPECT_LE(trial.server.requests, 12);
    }
}

TEST(PinnedDownload, aRedirectionIsFollowedFromTheSameByte)
{
    Download trial;
    trial.server.replies["moved"] =
        "HTTP/1.1 302 X\r\nLocation: /file\r\nContent-Length: 4\r\n\r\nhere";
    writeFile(trial.path + u".part"_s, trial.server.files["file"].first(70'000));
    trial.server.asked = [](qint64 from) { EXPECT_EQ(from, 70'000); };
    PinnedFile pin = pinOf(trial.server, "file");
    pin.url = trial.server.address(u"moved"_s);
    EXPECT_EQ(trial.fetch(pin).status, 0);
    EXPECT_TRUE(trial.isWhole());
}

TEST(PinnedDownload, onlyHttpsLeavesThisMachine)
{
    Download trial;
    PinnedFile pin = pinOf(trial.server, "file");
    for (const QString& url : {u"http://example.com/file"_s, u"ftp://127.0.0.1/file"_s, u""_s,
                               u"file:///etc/passwd"_s, u"no address"_s}) {
        pin.url = url;
        const FetchOutcome outcome = trial.fetch(pin);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(outcome.reason.startsWith(u"La dirección de descarga no es segura"_s))
            << qPrintable(outcome.reason);
    }
}

TEST(PinnedDownload, aFullDiskKeepsWhatFitted)
{
    Download trial;
    const QStringList mount{u"-t"_s,       u"tmpfs"_s, u"-o"_s,
                            u"size=64k"_s, u"tmpfs"_s, trial.folder.path()};
    if (::geteuid() != 0 || QProcess::execute(u"mount"_s, mount) != 0)
        GTEST_SKIP() << "cannot mount a small disk";
    const FetchOutcome outcome = trial.fetch();
    const qint64 stored = trial.partSize();
    QProcess::execute(u"umount"_s, {trial.folder.path()});
    EXPECT_EQ(outcome.status, installLacksRoom);
    EXPECT_EQ(outcome.reason, u"No queda espacio en el disco."_s);
    EXPECT_GT(stored, 0);
    EXPECT_LE(stored, 64 * 1024);
}

}    // namespace
