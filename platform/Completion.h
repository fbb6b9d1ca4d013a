#pragma once

#include <QCoroTask>    // for std::coroutine_handle: moc cannot read <coroutine>

#include <utility>
#include <vector>

// An event for which coroutines wait: `co_await completion.wait();`. complete() resumes them before
// it returns, so an object that calls it in its destructor leaves no coroutine waiting. Not
// thread-safe.
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
