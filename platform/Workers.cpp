#include "platform/Workers.h"

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif

QThreadPool& workers()
{
    static QThreadPool pool;
    return pool;
}

void yieldToInterface()
{
#ifdef Q_OS_LINUX
    // QThread::setPriority does nothing under the default scheduling of Linux.
    static thread_local const int lowered =
        setpriority(PRIO_PROCESS, id_t(gettid()), 10);    // of -20 to 19; 19 runs last
    Q_UNUSED(lowered);
#endif
}
