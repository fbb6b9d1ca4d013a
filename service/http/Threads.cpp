#include "service/http/Threads.h"

#include <system_error>

bool Threads::enqueue(std::function<void()> job)
{
    const std::scoped_lock lock(m_mutex);
    if (m_jobs.size() >= m_mostWaiting)
        return false;
    m_jobs.push_back(std::move(job));
    if (m_jobs.size() > m_idle && m_threads.size() < m_most) {
        try {
            m_threads.emplace_back(&Threads::work, this);
        } catch (const std::system_error&) {
            // The system gives no more threads: the job waits for one that exists.
        }
    }
    m_changed.notify_one();
    return true;
}

Threads::~Threads()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isEnding = true;
        m_changed.notify_all();
    }
    for (std::thread& thread : m_threads)
        thread.join();
}

void Threads::work()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        ++m_idle;
        m_changed.wait(lock, [&] { return m_isEnding || !m_jobs.empty(); });
        --m_idle;
        if (m_jobs.empty())
            return;
        const auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}
