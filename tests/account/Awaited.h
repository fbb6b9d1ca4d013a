#pragma once

#include <QCoroTask>

#include <exception>
#include <optional>
#include <type_traits>

template <typename Result>
QCoro::Task<> caught(QCoro::Task<Result> task, std::optional<Result>* result,
                     std::exception_ptr* failure)
{
    try {
        *result = co_await std::move(task);
    } catch (...) {
        *failure = std::current_exception();
    }
}

inline QCoro::Task<> caught(QCoro::Task<> task, std::exception_ptr* failure)
{
    try {
        co_await std::move(task);
    } catch (...) {
        *failure = std::current_exception();
    }
}

// Runs the event loop until the task has ended; returns its result or throws its exception.
// QCoro::waitFor() alone would wait for ever for a task that throws.
template <typename Result>
Result awaited(QCoro::Task<Result> task)
{
    std::exception_ptr failure;
    if constexpr (std::is_void_v<Result>) {
        QCoro::waitFor(caught(std::move(task), &failure));
        if (failure)
            std::rethrow_exception(failure);
    } else {
        std::optional<Result> result;
        QCoro::waitFor(caught(std::move(task), &result, &failure));
        if (failure)
            std::rethrow_exception(failure);
        return std::move(*result);
    }
}
