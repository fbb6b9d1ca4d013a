#include "platform/Workers.h"
#include "platform/PreferencesStore.h"

#include <QSemaphore>
#include <QTemporaryDir>

#include <atomic>
#include <cstdlib>
#include <stdexcept>

#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(Workers, runAtLowerPriorityThanTheInterface)
{
    const int own = getpriority(PRIO_PROCESS, id_t(gettid()));
    const auto priority = runOnWorker([] { return getpriority(PRIO_PROCESS, id_t(gettid())); });
    EXPECT_EQ(priority.result(), 10);
    EXPECT_EQ(getpriority(PRIO_PROCESS, id_t(gettid())), own);
}

TEST(Workers, failuresArriveAtTheFuture)
{
    auto failing = runOnWorker([] { throw std::runtime_error("no disk"); });
    EXPECT_THROW(failing.waitForFinished(), std::runtime_error);
}

namespace {

// Each of the two functions below ends its process, because workers() cannot be used again after
// finishWorkers(). The process exits with 0 only if the function neither fails nor hangs.
[[noreturn]] void finishWithWorkWaiting()
{
    alarm(20);
    workers().setMaxThreadCount(1);
    QSemaphore begun;
    std::atomic<int> done = 0;
    const auto running = runOnWorker([&] {
        begun.release();
        QThread::msleep(50);
        ++done;
    });
    const auto waiting = runOnWorker([&] { return ++done; });
    begun.acquire();
    finishWorkers();
    const auto late = runOnWorker([&] { return ++done; });
    QThread::msleep(20);
    const bool isUntouched =
        !waiting.isFinished() && !waiting.isCanceled() && !late.isFinished() && !late.isCanceled();
    std::exit(running.isFinished() && isUntouched && done == 1 ? 0 : 1);
}

[[noreturn]] void finishWithACheckpointWaiting()
{
    alarm(20);
    const QTemporaryDir folder;
    workers().setMaxThreadCount(1);
    QSemaphore begun;
    runOnWorker([&] {
        begun.release();
        QThread::msleep(200);
    });
    begun.acquire();
    {
        PreferencesStore store(folder.filePath(u"preferences.sqlite"_qs));
        const auto write = [&] { return store.setValue(u"batch"_qs, QByteArray(9 << 20, 'x')); };
        if (!write())
            std::exit(1);
        finishWorkers();
        for (int i = 0; i < 5; ++i) {
            if (!write())
                std::exit(1);
        }
    }
    std::exit(0);
}

}    // namespace

TEST(WorkersDeathTest, atTheEndWhatRunsFinishesAndNothingElseBeginsOrIsCancelled)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(finishWithWorkWaiting(), testing::ExitedWithCode(0), "");
}

TEST(WorkersDeathTest, thePreferencesDoNotWaitForACheckpointThatWillNotRun)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(finishWithACheckpointWaiting(), testing::ExitedWithCode(0), "");
}
