#pragma once

#include <QFuture>
#include <QFutureInterface>
#include <QThreadPool>

#include <exception>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

// The pool for decoding, rendering and encoding, with one thread per core. Not Qt's global pool: Qt
// divides the scaling of a picture among the threads of that pool and waits for them, so the
// interface would have to wait for all of this work. Start work with runOnWorker().
QThreadPool& workers();

// Waits for the work that has begun and drops the rest. Call this before the application object is
// destroyed, because work on pictures needs that object. The future of work that is dropped or
// started later never finishes. It is not cancelled either, because a coroutine that awaits a
// cancelled future reads a result that does not exist.
void finishWorkers();

// Lowers the priority of the calling worker thread below that of the interface thread, and names
// the worker.
void yieldToInterface();
inline constexpr const char* workerThreadName = "moltiva worker";

// `urgent` is for short work whose result somebody waits for: it starts before the usual work in
// the queue.
enum class Urgency { usual, urgent };
void startOnWorker(std::function<void()> work, Urgency urgency = Urgency::usual);

// Hands `work` to `start` as a function, and gives the future of its result or exception.
template <typename Work, typename Start>
auto futureOf(Work&& work, const Start& start) -> QFuture<std::invoke_result_t<std::decay_t<Work>>>
{
    using Result = std::invoke_result_t<std::decay_t<Work>>;
    struct Job {
        QFutureInterface<Result> promise;    // not a QPromise, whose destructor cancels the future
        std::decay_t<Work> work;
    };
    // Shared, because a std::function copies the function it runs.
    auto job = std::shared_ptr<Job>(new Job{QFutureInterface<Result>(), std::forward<Work>(work)});
    job->promise.reportStarted();
    auto future = job->promise.future();
    start([job = std::move(job)] {
        try {
            if constexpr (std::is_void_v<Result>)
                job->work();
            else
                job->promise.reportResult(job->work());
        } catch (...) {
            job->promise.reportException(std::current_exception());
        }
        job->promise.reportFinished();
    });
    return future;
}

// Runs `work` on a worker. The future rethrows an exception that `work` throws.
template <typename Work>
auto runOnWorker(Work&& work, Urgency urgency = Urgency::usual)
{
    return futureOf(std::forward<Work>(work), [urgency](std::function<void()> job) {
        startOnWorker(std::move(job), urgency);
    });
}

// Runs `work` on a worker. If it throws, for example because memory is short, the result is a
// default value.
template <typename Work>
auto tryOnWorker(Work work) -> QFuture<std::invoke_result_t<Work>>
{
    return runOnWorker([work = std::move(work)]() -> std::invoke_result_t<Work> {
        try {
            return work();
        } catch (const std::exception&) {
            return {};
        }
    });
}
