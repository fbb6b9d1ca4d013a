#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

#include <httplib.h>

// One connection holds one thread. A new one is started when all are held, so that some idle or
// slow connections do not make the next one wait.
class Threads final : public httplib::TaskQueue {
public:
    explicit Threads(size_t most) : m_most(most) {}

    void enqueue(std::function<void()> job) override;
    void shutdown() override;    // waits for all

private:
    void work();

    const size_t m_most;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_jobs;
    std::vector<std::thread> m_threads;
    size_t m_idle = 0;
    bool m_isEnding = false;
};
