#pragma once

#include <QCoroTask>    // declares std::coroutine_handle; moc cannot read <coroutine>

#include <utility>
#include <vector>

// An event that coroutines await: `co_await completion.wait();`. They resume inside complete(), so
// an object that completes it in its destructor leaves none of them waiting. For one thread.
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
    // Makes later calls of wait() wait for the next complete().
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
