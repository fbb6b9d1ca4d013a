#include "platform/ProgramRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <QLockFile>
#endif

using namespace Qt::StringLiterals;

#ifdef Q_OS_UNIX

// A lock of the system itself: names and numbers of processes are used again, in a container even
// by every start.
struct ProgramRun::Lock {
    enum class Open { existing, fresh };

    Lock(const QString& path, Open open)
        : file(path),
          descriptor(::open(QFile::encodeName(path).constData(),
                            O_RDWR | O_CLOEXEC | (open == Open::fresh ? O_CREAT | O_EXCL : 0),
                            S_IRUSR | S_IWUSR))
    {
        isMissing = descriptor < 0 && errno == ENOENT;
        struct stat status = {};
        // Whoever looked at it before may have removed it meanwhile.
        isHeld = descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) == 0 &&
                 fstat(descriptor, &status) == 0 && status.st_nlink > 0;
    }
    ~Lock()
    {
        if (isHeld)
            QFile::remove(file);
        if (descriptor >= 0)
            close(descriptor);
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    QString file;
    int descriptor;
    bool isMissing = false, isHeld = false;
};

#else

struct ProgramRun::Lock {
    enum class Open { existing, fresh };

    Lock(const QString& path, Open) : lock(path)
    {
        lock.setStaleLockTime(0);
        isHeld = lock.tryLock(0);
    }
    QLockFile lock;
    bool isMissing = false, isHeld = false;
};

#endif

ProgramRun::ProgramRun(const QString& folder) : m_folder(folder) {}

ProgramRun::~ProgramRun() = default;

QString ProgramRun::name()
{
    // Somebody who looks whether it goes on may hold a lock for a moment before we do.
    constexpr int attempts = 3;
    for (int i = 0; i < attempts && !m_lock && QDir().mkpath(m_folder); ++i) {
        removeEnded();
        m_name = QUuid::createUuid().toString(QUuid::WithoutBraces);
        auto lock = std::make_unique<Lock>(lockFile(m_name), Lock::Open::fresh);
        if (lock->isHeld)
            m_lock = std::move(lock);
    }
    return m_lock ? m_name : QString();
}

void ProgramRun::removeEnded() const
{
    const QStringList locks = QDir(m_folder).entryList({u"*.lock"_s}, QDir::Files);
    for (const QString& lock : locks)
        isGoingOn(QFileInfo(lock).baseName());    // which removes the lock of one that does not
}

bool ProgramRun::isGoingOn(const QString& run) const
{
    // Names come from a file.
    if (QUuid::fromString(run).isNull())
        return false;
    if (is(run))
        return true;
    const Lock lock(lockFile(run), Lock::Open::existing);
    return !lock.isHeld && !lock.isMissing;
}

QString ProgramRun::lockFile(const QString& run) const
{
    return QDir(m_folder).filePath(run + u".lock"_s);
}
