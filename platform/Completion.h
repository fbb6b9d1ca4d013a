#pragma once

#include <QCoroTask>    // brings std::coroutine_handle past moc, which cannot read its header

#include <utility>
#include <vector>

// Something that coroutines wait for: `co_await completion.wait();`. They go on inside complete(),
// so that nothing that is about to go leaves them waiting. Of one thread.
class Completion {
public:
    Completion() = default;
    Completion(const Completion&) = delete;
    Completion& operator=(const Completion&) = delete;

    void complete()
    {
        m_isComplete = true;
        for (const std::coroutine_handle<>& each : std::exchange(m_waiting, {}))
            each.resume();
    }
    // Whoever waits from now on waits for the next time.
    void reset() { m_isComplete = false; }

    struct Wait {
        Completion* completion;
        bool await_ready() const noexcept { return completion->m_isComplete; }
        void await_suspend(std::coroutine_handle<> coroutine) const
        {
            completion->m_waiting.push_back(coroutine);
        }
        void await_resume() const noexcept {}
    };
    Wait wait() { return {this}; }

private:
    std::vector<std::coroutine_handle<>> m_waiting;
    bool m_isComplete = false;
};
