#include "platform/photo/DecodeGate.h"

#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <thread>

#include <QFile>

#include <sys/syscall.h>
#include <unistd.h>

#include <gtest/gtest.h>

TEST(DecodeGate, whatAPassGivesBackLetsTheNextOneIn)
{
    DecodeGate gate(100);
    auto first = gate.enter(90);
    auto second = std::async(std::launch::async, [&] { const auto pass = gate.enter(60); });
    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    first.shrinkTo(80);
    first.shrinkTo(40);
    EXPECT_EQ(second.wait_for(std::chrono::seconds(60)), std::future_status::ready);
}

TEST(DecodeGate, neverLetsMoreThanTheBudgetInAtOnce)
{
    DecodeGate gate(100);
    std::atomic<int> arrived = 0, inside = 0, most = 0;
    std::array<std::jthread, 6> threads;
    for (std::jthread& thread : threads) {
        thread = std::jthread([&] {
            ++arrived;
            const auto pass = gate.enter(40);
            const int now = ++inside;
            int seen = most;
            while (now > seen && !most.compare_exchange_weak(seen, now))
                ;
            // Keeps `pass` until all threads have started.
            while (arrived < int(threads.size()))
                std::this_thread::yield();
            --inside;
        });
    }
    for (std::jthread& thread : threads)
        thread.join();
    EXPECT_LE(most, 2);
}

// The kernel's id of the calling thread.
pid_t threadNumber()
{
    return pid_t(::syscall(SYS_gettid));
}

bool isAsleep(pid_t thread)
{
    QFile state(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    return state.open(QIODevice::ReadOnly) && state.readAll().contains(") S ");
}

void waitUntilAsleep(const std::atomic<pid_t>& thread)
{
    while (thread == 0 || !isAsleep(thread))
        std::this_thread::yield();
}

TEST(DecodeGate, aGiantRunsAloneAndSmallOnesDoNotOvertakeIt)
{
    DecodeGate gate(100);
    std::optional small(gate.enter(10));
    std::atomic<bool> giantIn = false, secondIn = false, secondSawGiant = false;
    std::atomic<pid_t> giantThread = 0, secondThread = 0;
    std::jthread giant([&] {
        giantThread = threadNumber();
        const auto pass = gate.enter(500);
        giantIn = true;
    });
    waitUntilAsleep(giantThread);
    std::jthread second([&] {
        secondThread = threadNumber();
        const auto pass = gate.enter(10);
        secondSawGiant = giantIn.load();
        secondIn = true;
    });
    waitUntilAsleep(secondThread);
    EXPECT_FALSE(giantIn);
    EXPECT_FALSE(secondIn) << "the giant would starve behind a stream of small photos";
    small.reset();
    giant.join();
    second.join();
    EXPECT_TRUE(secondSawGiant);
}
