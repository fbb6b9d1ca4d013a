#pragma once

#include <condition_variable>
#include <mutex>

// Lets a limited number of threads do something at once. Replaces std::counting_semaphore, whose
// waiting threads can miss a release with GCC 12.
class Turns {
public:
    explicit Turns(int free) : m_free(free) {}

    void take()    // waits for a free turn
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_free > 0; });
        --m_free;
    }
    bool tryTake()
    {
        const std::scoped_lock lock(m_mutex);
        return m_free > 0 && m_free-- > 0;
    }
    void giveBack()
    {
        const std::scoped_lock lock(m_mutex);
        ++m_free;
        m_changed.notify_one();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_free;
};
