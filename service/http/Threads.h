#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// Threads that run jobs; a job serves one connection until it closes. A thread is added when none
// is idle, so that slow connections do not keep the next one waiting.
class Threads {
public:
    Threads(size_t most, size_t mostWaiting) : m_most(most), m_mostWaiting(mostWaiting) {}
    ~Threads();    // runs the jobs that are left and waits for them
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

    // Returns false, and drops the job, when `mostWaiting` jobs are waiting already.
    bool enqueue(std::function<void()> job);

private:
    void work();

    const size_t m_most, m_mostWaiting;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_jobs;
    std::vector<std::thread> m_threads;
    size_t m_idle = 0;
    bool m_isEnding = false;
};
