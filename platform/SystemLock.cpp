#include "platform/SystemLock.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int flagsFor(SystemLock::Open open)
{
    switch (open) {
    case SystemLock::Open::any:
        return O_CREAT;
    case SystemLock::Open::existing:
        return 0;
    case SystemLock::Open::fresh:
        return O_CREAT | O_EXCL;
    }
    return 0;
}

int openedLock(const QByteArray& path, int flags)
{
    constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
    const auto attempt = [&] {
        return ::open(path.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | flags,
                      ownerOnly);
    };
    const int descriptor = attempt();
    // Restores the permissions that a file of the user may have lost.
    if (descriptor < 0 && errno == EACCES && ::chmod(path.constData(), ownerOnly) == 0)
        return attempt();
    return descriptor;
}

SystemLock::State taken(int descriptor)
{
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK ? SystemLock::State::others : SystemLock::State::impossible;
    struct stat status = {};
    // Another process may have removed the file since it was opened here.
    const bool isThere = ::fstat(descriptor, &status) == 0 && status.st_nlink > 0;
    return isThere ? SystemLock::State::ours : SystemLock::State::others;
}

}    // namespace

SystemLock::SystemLock(const QString& path, Open open)
    : m_path(path), m_descriptor(openedLock(QFile::encodeName(path), flagsFor(open)))
{
    if (m_descriptor >= 0)
        m_state = taken(m_descriptor);
    else if (errno == ENOENT && open == Open::existing)
        m_state = State::missing;
}

SystemLock::~SystemLock()
{
    if (isOurs())
        QFile::remove(m_path);
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}
