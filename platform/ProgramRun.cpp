#include "platform/ProgramRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

using namespace Qt::StringLiterals;

ProgramRun::ProgramRun(const QString& folder) : m_folder(folder) {}

ProgramRun::~ProgramRun() = default;

QString ProgramRun::name()
{
    // Tries several times, because another process in isGoingOn() may lock the new file before this
    // one does.
    constexpr int attempts = 3;
    for (int i = 0; i < attempts && !m_lock && QDir().mkpath(m_folder); ++i) {
        removeEnded();
        m_name = QUuid::createUuid().toString(QUuid::WithoutBraces);
        auto lock = std::make_unique<SystemLock>(lockFile(m_name), SystemLock::Open::fresh);
        if (lock->isOurs())
            m_lock = std::move(lock);
    }
    return m_lock ? m_name : QString();
}

void ProgramRun::removeEnded() const
{
    const QStringList locks = QDir(m_folder).entryList({u"*.lock"_s}, QDir::Files);
    for (const QString& lock : locks)
        isGoingOn(QFileInfo(lock).baseName());    // also removes the lock file of an ended run
}

bool ProgramRun::isGoingOn(const QString& run) const
{
    // `run` comes from the name of a file, which may contain anything.
    if (QUuid::fromString(run).isNull())
        return false;
    if (is(run))
        return true;
    const SystemLock lock(lockFile(run), SystemLock::Open::existing);
    return !lock.isOurs() && lock.state() != SystemLock::State::missing;
}

QString ProgramRun::lockFile(const QString& run) const
{
    return QDir(m_folder).filePath(run + u".lock"_s);
}
