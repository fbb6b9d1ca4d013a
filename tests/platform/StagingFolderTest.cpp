#include "platform/StagingFolder.h"
#include "platform/PrivateSocket.h"
#include "tests/RuntimeFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

#include <unistd.h>

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

TEST(SystemLock, IsFreeWhateverAnEndedProcessLeft)
{
    const QTemporaryDir place;
    const QString path = place.filePath(u"a.lock"_s);
    using State = SystemLock::State;
    EXPECT_EQ(SystemLock(path, SystemLock::Open::existing).state(), State::missing);
    for (const QByteArray left : {"", "1\nmoltiva\nhost\n", "\xff\xfe no text"}) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(left) == left.size());
        EXPECT_TRUE(file.setPermissions({}));
        const SystemLock lock(path);
        EXPECT_EQ(lock.state(), State::ours) << left.constData();
        EXPECT_EQ(SystemLock(path).state(), State::others) << left.constData();
        EXPECT_EQ(SystemLock(path, SystemLock::Open::fresh).state(), State::impossible);
    }
    EXPECT_FALSE(QFileInfo::exists(path));
    EXPECT_EQ(SystemLock(place.path()).state(), State::impossible);
}

TEST(PrivateSocket, StandsInAFolderThatIsTheUsersAlone)
{
    const QTemporaryDir runtime, data, shared;
    const auto pathWith = [&](const QString& folder, const QString& dataFolder) {
        const RuntimeFolder given(folder);
        return privateSocketPath(u"x.socket"_s, dataFolder);
    };
    EXPECT_EQ(pathWith(runtime.path(), data.path()), runtime.filePath(u"x.socket"_s));

    QFile::setPermissions(shared.path(), QFile::permissions(shared.path()) | QFile::ExeOther);
    const QString link = data.filePath(u"link"_s);
    QFile::link(runtime.path(), link);
    // /run/user/UID exists only if a session manager has made it.
    const QString system = u"/run/user/%1"_s.arg(::geteuid());
    const bool hasSystem = QFileInfo::exists(system);
    const QString beside = hasSystem ? system : data.filePath(u"run"_s);
    for (const QString& wrong : {shared.path(), link, u"relative"_s, u"/nowhere"_s, QString()})
        EXPECT_EQ(pathWith(wrong, data.path()), beside + u"/x.socket"_s) << qPrintable(wrong);
    if (!hasSystem) {
        EXPECT_EQ(QFile::permissions(beside) & (QFile::ReadGroup | QFile::ExeOther),
                  QFile::Permissions());
        const QString deep = data.filePath(QString(100, u'a'));
        QDir().mkdir(deep);
        EXPECT_EQ(pathWith({}, deep), QString()) << "it would be cut";
    }
    if (::geteuid() == 0 && ::chown(runtime.path().toLocal8Bit().constData(), 65534, 65534) == 0) {
        EXPECT_EQ(pathWith(runtime.path(), data.path()), beside + u"/x.socket"_s) << "another's";
    }
}
