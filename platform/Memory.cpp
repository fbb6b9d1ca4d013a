#include "platform/Memory.h"

#include <QFile>

#ifdef __GLIBC__
#include <malloc.h>
#endif
#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

void fixAllocatorThresholds()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    // Free memory beyond this goes back to the system. With the default of 128 kB, every picture
    // would need new memory from the system.
    mallopt(M_TRIM_THRESHOLD, 16 << 20);
#endif
}

void keepFreedMemory()
{
#ifdef __GLIBC__
    mallopt(M_TRIM_THRESHOLD, 128 << 20);
#endif
}

qint64 totalMemory()
{
#ifdef Q_OS_UNIX
    const qint64 pages = ::sysconf(_SC_PHYS_PAGES), size = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0 ? pages * size : 0;
#else
    return 0;
#endif
}

qint64 peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).chopped(2).trimmed().toLongLong() * 1024;
    }
    return 0;
}

void releaseFreedMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}
