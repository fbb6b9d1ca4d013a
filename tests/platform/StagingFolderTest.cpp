#include "platform/StagingFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

void write(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
}

}    // namespace

TEST(StagingFolder, IsItsUsersAloneAndGoesWithWhatIsInIt)
{
    const QTemporaryDir place;
    const QString leftover = place.filePath(u"5d1f4c0e-3d1c-4a86-8b8e-4b7d7b6f1a11"_s);
    QDir().mkpath(leftover);
    write(leftover + u"/1"_s);
    auto first = std::make_unique<StagingFolder>(place.path());
    ASSERT_TRUE(first->isUsable());
    EXPECT_FALSE(QFileInfo::exists(leftover)) << "of a run that has ended";
    const QString file = first->filePath(u"1"_s);
    write(file);
    const auto folder = QFileInfo(QFileInfo(file).path());
    EXPECT_FALSE(folder.permissions() &
                 (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));

    const StagingFolder second(place.path());
    EXPECT_TRUE(QFileInfo::exists(file)) << "another one is still at work";
    first.reset();
    EXPECT_FALSE(QFileInfo::exists(folder.filePath()));
    EXPECT_FALSE(StagingFolder(u"/proc/none"_s).isUsable());
}

TEST(ProgramRun, IsKnownToOthersAsLongAsItLasts)
{
    const QTemporaryDir place;
    const ProgramRun other(place.path());
    auto run = std::make_unique<ProgramRun>(place.path());
    const QString name = run->name();
    EXPECT_EQ(run->name(), name);
    EXPECT_TRUE(run->isGoingOn(name));
    EXPECT_TRUE(other.isGoingOn(name));
    run.reset();
    EXPECT_FALSE(other.isGoingOn(name));
    EXPECT_FALSE(other.isGoingOn(u"../../etc/passwd"_s));
    EXPECT_FALSE(other.isGoingOn({}));

    const QString left = place.filePath(u"5d1f4c0e-3d1c-4a86-8b8e-4b7d7b6f1a11.lock"_s);
    write(left);
    EXPECT_FALSE(ProgramRun(place.path()).name().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(left)) << "locks of ended runs would add up";
}
