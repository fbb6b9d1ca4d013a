#pragma once

#include <QFuture>
#include <QFutureInterface>
#include <QThreadPool>

#include <exception>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

// The pool for decoding, rendering and encoding: one thread a core. Not Qt's own pool: Qt splits
// the scaling of a picture over that one and waits, which would hold the interface behind all of
// this. Work goes through runOnWorker().
QThreadPool& workers();

// Before the application object goes, since what works on pictures needs it: waits for the work
// that has begun and drops the rest. What is dropped, or asked for afterwards, never finishes, and
// its future is not cancelled either: a coroutine that awaits it would read a result that is not
// there.
void finishWorkers();

// Gives the calling worker thread less of the processor than the interface, and its name.
void yieldToInterface();
inline constexpr const char* workerThreadName = "moltiva worker";

// What is short and waited for goes before the work that waits for a thread, for pictures mostly.
enum class Urgency { usual, urgent };
void startOnWorker(std::function<void()> work, Urgency urgency = Urgency::usual);

// Runs `work` on a worker. An exception arrives at the future.
template <typename Work>
auto runOnWorker(Work&& work, Urgency urgency = Urgency::usual)
    -> QFuture<std::invoke_result_t<std::decay_t<Work>>>
{
    using Result = std::invoke_result_t<std::decay_t<Work>>;
    struct Job {
        QFutureInterface<Result> promise;    // a QPromise cancels when it is dropped
        std::decay_t<Work> work;
    };
    // Shared, because the pool copies what it runs.
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

// The same for what may be missing: a default value arrives when memory is short.
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
