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

template <class T> Driver drive(Task<T> task, std::shared_ptr<TaskState<T>> state) {
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
    state->finish(std::move(outcome));
}

template <class T> TaskHandle<T> launch(Executor& executor, Task<T> task, std::shared_ptr<TaskState<T>> state) {
    Driver driver = drive(std::move(task), state);
    driver.frame.promise().context = TaskContext{&executor, state->stop.get_token()};
    executor.post([frame = driver.frame] { frame.resume(); });
    return TaskHandle<T>(std::move(state));
}

} // namespace detail

/// Starts a task of its own on `executor`, which must outlive it. It ends when it ends or sees its cancellation.
template <class T> TaskHandle<T> spawn(Executor& executor, Task<T> task) {
    return detail::launch(executor, std::move(task), std::make_shared<detail::TaskState<T>>());
}

/// Starts a task on `executor` that is cancelled along with `parent`.
template <class T> TaskHandle<T> spawnChild(Executor& executor, const std::stop_token& parent, Task<T> task) {
    auto state = std::make_shared<detail::TaskState<T>>();
    state->followCancellation(parent);
    return detail::launch(executor, std::move(task), std::move(state));
}

} // namespace kestrin
