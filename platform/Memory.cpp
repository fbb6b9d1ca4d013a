#include "platform/Memory.h"

#include <QFile>

#ifdef __GLIBC__
#include <malloc.h>
#endif

void settleAllocator()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
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
