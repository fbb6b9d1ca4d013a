#pragma once

#include <QFuture>
#include <QFutureInterface>
#include <QThreadPool>

#include <exception>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

// The pool for decoding, rendering and encoding: one thread per core. Not Qt's own pool: Qt divides
// the scaling of a picture among the threads of its pool and waits, so the interface would wait
// behind all of this work. Start work with runOnWorker().
QThreadPool& workers();

// Waits for the work that has begun and drops the rest. Call before the application object is
// destroyed: work on pictures needs it. The future of dropped or later work never finishes. It is
// not cancelled either: a coroutine that awaits it would read a result that is not there.
void finishWorkers();

// Lowers the calling worker thread's priority below the interface's, and names the thread.
void yieldToInterface();
inline constexpr const char* workerThreadName = "moltiva worker";

// Urgent: short work that somebody waits for. It starts before the usual work in the queue.
enum class Urgency { usual, urgent };
void startOnWorker(std::function<void()> work, Urgency urgency = Urgency::usual);

// Runs `work` on a worker. The future rethrows its exception.
template <typename Work>
auto runOnWorker(Work&& work, Urgency urgency = Urgency::usual)
    -> QFuture<std::invoke_result_t<std::decay_t<Work>>>
{
    using Result = std::invoke_result_t<std::decay_t<Work>>;
    struct Job {
        QFutureInterface<Result> promise;    // a QPromise cancels when it is destroyed
        std::decay_t<Work> work;
    };
    // Shared, because the pool copies the function it runs.
    auto job = std::shared_ptr<Job>(new Job{QFutureInterface<Result>(), std::forward<Work>(work)});
    job->promise.reportStarted();
    auto future = job->promise.future();
    const auto runJob = [job = std::move(job)] {
        try {
            if constexpr (std::is_void_v<Result>)
                job->work();
            else
                job->promise.reportResult(job->work());
        } catch (...) {
            job->promise.reportException(std::current_exception());
        }
        job->promise.reportFinished();
    };
    startOnWorker(runJob, urgency);
    return future;
}

// Runs `work` on a worker and gives a default value if it throws, as when memory is short.
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
