#pragma once

#include "tasks/TaskHandle.h"

namespace kestrin {

namespace detail {

/// The outermost coroutine of a spawned task: owns the frame and destroys itself at the end.
struct Driver {
    struct promise_type : PromiseBase {
        Driver get_return_object() { return Driver{std::coroutine_handle<promise_type>::from_promise(*this)}; }
        std::suspend_always initial_suspend() const noexcept { return {}; }
        std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const {}
        void unhandled_exception() const { std::terminate(); }
    };
    std::coroutine_handle<promise_type> frame;
};

/// `membership` ends after the result has been announced.
template <class T, class Membership>
Driver drive(Membership membership, Task<T> task, std::shared_ptr<TaskState<T>> state) {
    Outcome<T> outcome;
    {
        // The frame goes before anybody learns of the end: what it holds must not outlive the last wait for it.
        Task<T> running = std::move(task);
        try {
            if constexpr (std::is_void_v<T>) {
                co_await std::move(running);
                outcome.template emplace<1>();
            } else {
                T result = co_await std::move(running);
                outcome.template emplace<1>(std::move(result));
            }
        } catch (...) {
            outcome.template emplace<2>(std::current_exception());
        }
    }
    [[maybe_unused]] const Membership untilTheEnd = std::move(membership);
    state->finish(std::move(outcome));
}

struct NoMembership {};

template <class T, class Membership = NoMembership>
TaskHandle<T> launch(
    Executor& executor, Task<T> task, std::shared_ptr<TaskState<T>> state, Membership membership = {}) {
    requireUse(static_cast<bool>(task), "it was started after it had been moved away");
    Driver driver = drive<T, Membership>(std::move(membership), std::move(task), state);
    driver.frame.promise().context = TaskContext{&executor, state->stop.get_token()};
    resumeOn(executor, driver.frame);
    return TaskHandle<T>(std::move(state));
}

} // namespace detail

/// Starts a task of its own on `executor`, which must outlive it. It ends when it ends or sees its cancellation.
/// A program starts its tasks in a `TaskScope`, which knows when all have ended.
template <class T> TaskHandle<T> spawn(Executor& executor, Task<T> task) {
    return detail::launch(executor, std::move(task), std::make_shared<detail::TaskState<T>>());
}

/// Starts a task on `executor` that is cancelled along with `parent`. Its parent must await its end.
template <class T> TaskHandle<T> spawnChild(Executor& executor, const std::stop_token& parent, Task<T> task) {
    auto state = std::make_shared<detail::TaskState<T>>();
    state->followCancellation(parent);
    return detail::launch(executor, std::move(task), std::move(state));
}

} // namespace kestrin
