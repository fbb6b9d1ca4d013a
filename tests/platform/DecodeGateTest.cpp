#include "platform/DecodeGate.h"

#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <thread>

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
            // Keeps the pass until all threads have started.
            while (arrived < int(threads.size()))
                std::this_thread::yield();
            --inside;
        });
    }
    for (std::jthread& thread : threads)
        thread.join();
    EXPECT_LE(most, 2);
}

TEST(DecodeGate, aGiantRunsAloneAndSmallOnesDoNotOvertakeIt)
{
    DecodeGate gate(100);
    std::optional small(gate.enter(10));
    std::atomic<bool> giantIn = false, secondIn = false, secondSawGiant = false;
    std::jthread giant([&] {
        const auto pass = gate.enter(500);
        giantIn = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    std::jthread second([&] {
        const auto pass = gate.enter(10);
        secondSawGiant = giantIn.load();
        secondIn = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(giantIn);
    EXPECT_FALSE(secondIn) << "the giant would starve behind a stream of small photos";
    small.reset();
    giant.join();
    second.join();
    EXPECT_TRUE(secondSawGiant);
}
