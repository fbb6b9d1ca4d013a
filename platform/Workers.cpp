#include "platform/Workers.h"

#include <mutex>

#ifdef Q_OS_LINUX
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace {

struct Entrance {
    std::mutex mutex;
    bool isClosed = false;
};

Entrance& entrance()
{
    static Entrance shared;
    return shared;
}

}    // namespace

QThreadPool& workers()
{
    static QThreadPool pool;
    return pool;
}

void finishWorkers()
{
    {
        const std::scoped_lock lock(entrance().mutex);
        entrance().isClosed = true;
    }
    workers().clear();
    workers().waitForDone();
}

void startOnWorker(std::function<void()> work, Urgency urgency)
{
    const std::scoped_lock lock(entrance().mutex);
    if (entrance().isClosed)
        return;
    const auto run = [work = std::move(work)] {
        yieldToInterface();
        work();
    };
    workers().start(run, urgency == Urgency::urgent ? 1 : 0);
}

void yieldToInterface()
{
#ifdef Q_OS_LINUX
    // QThread::setPriority does nothing under the default scheduling of Linux.
    static thread_local const int lowered = [] {
        pthread_setname_np(pthread_self(), workerThreadName);
        return setpriority(PRIO_PROCESS, id_t(gettid()), 10);    // of -20 to 19; 19 runs last
    }();
    Q_UNUSED(lowered);
#endif
}
