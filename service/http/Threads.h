#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// One connection holds one thread. A new one is started when all are held, so that some idle or
// slow connections do not make the next one wait.
class Threads {
public:
    Threads(size_t most, size_t mostWaiting) : m_most(most), m_mostWaiting(mostWaiting) {}
    ~Threads();    // waits for all
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

    // Whether it was taken; not when too many wait already.
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
