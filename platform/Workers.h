#pragma once

#include <QFuture>
#include <QPromise>
#include <QThreadPool>

#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

// The pool for decoding, rendering and encoding: one thread a core. Not Qt's own pool: Qt splits
// the scaling of a picture over that one and waits, which would hold the interface behind all of
// this.
QThreadPool& workers();

// Gives the calling worker thread less of the processor than the interface.
void yieldToInterface();

// Runs `work` on a worker. An exception arrives at the future.
template <typename Work>
auto runOnWorker(Work&& work) -> QFuture<std::invoke_result_t<std::decay_t<Work>>>
{
    using Result = std::invoke_result_t<std::decay_t<Work>>;
    struct Job {
        QPromise<Result> promise;
        std::decay_t<Work> work;
    };
    // Shared, because the pool copies what it runs.
    auto job = std::shared_ptr<Job>(new Job{QPromise<Result>(), std::forward<Work>(work)});
    job->promise.start();
    auto future = job->promise.future();
    workers().start([job = std::move(job)] {
        yieldToInterface();
        try {
            if constexpr (std::is_void_v<Result>)
                job->work();
            else
                job->promise.addResult(job->work());
        } catch (...) {
            job->promise.setException(std::current_exception());
        }
        job->promise.finish();
    });
    return future;
}
