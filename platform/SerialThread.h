#pragma once

#include "platform/Workers.h"

// A thread for work that waits long, as for other programs. Does one piece of work at a time, in
// the order given. The destructor waits for all of it, so what may take long looks at a stop_token.
class SerialThread {
public:
    SerialThread() { m_pool.setMaxThreadCount(1); }

    // The future rethrows an exception that `work` throws.
    template <typename Work>
    auto run(Work&& work)
    {
        return futureOf(std::forward<Work>(work), [this](std::function<void()> job) {
            m_pool.start([job = std::move(job)] {
                yieldToInterface();    // programs started there inherit the low priority
                job();
            });
        });
    }

private:
    QThreadPool m_pool;
};
