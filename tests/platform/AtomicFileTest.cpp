#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray digestOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString namesIn(const QTemporaryDir& folder)
{
    return QDir(folder.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
        .join(u' ');
}

}    // namespace

TEST(AtomicFile, aFailedWriteKeepsTheOldFileAndLeavesNothingElse)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.png"_qs);
    EXPECT_TRUE(writeAtomically(path, "old").isEmpty());
    rlimit former;
    getrlimit(RLIMIT_FSIZE, &former);
    const rlimit little{1000, former.rlim_max};
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &little);
    const QString error = writeAtomically(path, QByteArray(100'000, 'x'));
    setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, formerHandler);
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(digestOf(path), "old");
    EXPECT_EQ(namesIn(folder), u"a.png"_qs);

    EXPECT_TRUE(writeAtomically(path, "new").isEmpty());
    EXPECT_EQ(digestOf(path), "new");
}

TEST(AtomicFile, whatCannotBeReplacedIsReportedAndNothingIsLeftBehind)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"target/inside"_qs));
    EXPECT_FALSE(writeAtomically(folder.filePath(u"target"_qs), "x").isEmpty());
    EXPECT_FALSE(writeAtomically(folder.filePath(u"none/a.png"_qs), "x").isEmpty());
    EXPECT_EQ(namesIn(folder), u"target"_qs);
}

TEST(AtomicFile, theLongestNameOfTheFileSystemIsNotTooLong)
{
    const QTemporaryDir folder;
    const QString name(255, u'n');
    EXPECT_TRUE(writeAtomically(folder.filePath(name), "x").isEmpty());
    EXPECT_EQ(namesIn(folder), name);
}

TEST(AtomicFile, whatKilledRunsLeaveGoesWithTheNextOne)
{
    const QTemporaryDir folder;
    const QString ended = u"5d1f4c0e-3d1c-4a86-8b8e-4b7d7b6f1a11"_qs,
                  goingOn = u"6d1f4c0e-3d1c-4a86-8b8e-4b7d7b6f1a12"_qs;
    const QStringList kept{unfinishedPrefix() + goingOn + u".1x"_qs, unfinishedPrefix() + u"x.2"_qs,
                           u"a.png"_qs};
    for (const QString& name : kept + QStringList{unfinishedPrefix() + ended + u".3z"_qs})
        EXPECT_TRUE(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    removeUnfinished(folder.path(), [&](const QString& run) { return run == goingOn; });
    EXPECT_EQ(namesIn(folder), kept.join(u' '));
}

TEST(AtomicFile, whoMayReadFollowsTheUsersMask)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.png"_qs);
    for (const mode_t mask : {0077, 0002}) {
        const mode_t former = umask(mask);
        EXPECT_TRUE(writeAtomically(path, "x").isEmpty());
        umask(former);
        struct stat status;
        ASSERT_EQ(stat(QFile::encodeName(path).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0666U & ~mask);
    }
}
