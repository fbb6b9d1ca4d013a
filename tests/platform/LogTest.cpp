#include "platform/Log.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

struct LogTest : ::testing::Test {
    ~LogTest() override { qInstallMessageHandler(nullptr); }

    QTemporaryDir folder;
    const QString file = folder.filePath(u"moltiva.log"_s);
};

}    // namespace

TEST_F(LogTest, takesWhatIsWorthKnowingAndNamesNobody)
{
    startLog(file, false);
    qCDebug(logNetwork) << "a detail";
    qCInfo(logWork).noquote()
        << "exporting for ana.perez@ejemplo.es\nin /home/ana/Mis fotos/gato 1.jpg";
    qWarning("moltiva_session=abc; moltiva://auth?token=T0K3N and token=S3CR3T, Cookie: xyz=1");
    qWarning("Cookie: a=ONE; b=TWO");
    qWarning("Authorization: Bearer THREE");
    qWarning("open:/home/ana/x and \x1b[31m");
    const QString text = lastLogLines(file, 10).join(u'\n');
    EXPECT_EQ(text.count(u'\n'), 4) << qPrintable(text);
    EXPECT_TRUE(text.contains(u"info moltiva.work: exporting for <email> in <path>"_s));
    EXPECT_TRUE(text.contains(u"warning default: "_s));
    for (const char* personal : {"ana", "gato", "T0K3N", "S3CR3T", "xyz", "abc", "ONE", "TWO",
                                 "THREE", "\x1b", "a detail"})
        EXPECT_FALSE(text.contains(QLatin1StringView(personal))) << personal << qPrintable(text);
    EXPECT_EQ(QFileInfo(file).permissions() & (QFile::ReadOther | QFile::ReadGroup), 0);
}

TEST_F(LogTest, keepsThreeFilesOfBoundedLength)
{
    startLog(file, false);
    const QString line(1000, u'x');
    for (int i = 0; i < 4000; ++i)
        qCInfo(logWork).noquote() << i << line;
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files),
              (QStringList{u"moltiva.log"_s, u"moltiva.log.1"_s, u"moltiva.log.2"_s}));
    for (const QString& name : {file, file + u".1"_s, file + u".2"_s})
        EXPECT_LT(QFileInfo(name).size(), (1 << 20) + 2000);
    const QStringList last = lastLogLines(file, 5);
    ASSERT_EQ(last.size(), 5);
    EXPECT_TRUE(last.last().contains(u"moltiva.work: 3999 "_s));
}

TEST_F(LogTest, followsNoLinkAndWaitsForNoReader)
{
    QFile foreign(folder.filePath(u"foreign"_s));
    ASSERT_TRUE(foreign.open(QIODevice::WriteOnly));
    foreign.close();
    ASSERT_TRUE(QFile::link(foreign.fileName(), file));
    startLog(file, false);
    qCInfo(logWork) << "through a link";
    EXPECT_EQ(QFileInfo(foreign.fileName()).size(), 0);
    startLog(folder.filePath(u"missing/moltiva.log"_s), false);
    qCInfo(logWork) << "nowhere";
}
