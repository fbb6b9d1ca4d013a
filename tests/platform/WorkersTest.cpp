#include "platform/Workers.h"

#include <stdexcept>

#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

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
