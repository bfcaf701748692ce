#pragma once

#include "tasks/Task.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace kestrin {

namespace detail {

/// What a running task and its handles share. The waiters are resumed on their own executors, never inline.
template <class T> class TaskState {
public:
    std::stop_source stop;

    /// Cancels this task when `parent` is cancelled, until the task ends.
    void followCancellation(const std::stop_token& parent) {
        link_.emplace(parent, std::function<void()>([source = stop]() mutable { source.request_stop(); }));
    }

    [[nodiscard]] bool done() {
        const std::lock_guard guard(mutex_);
        return done_;
    }

    /// False when the task has ended already, so that the caller must not suspend.
    bool addWaiter(Executor* executor, std::coroutine_handle<> waiter) {
        const std::lock_guard guard(mutex_);
        if (done_) return false;
        waiters_.emplace_back(executor, waiter);
        return true;
    }

    void finish(Outcome<T>&& outcome) {
        link_.reset();
        std::vector<std::pair<Executor*, std::coroutine_handle<>>> waiters;
        {
            const std::lock_guard guard(mutex_);
            outcome_ = std::move(outcome);
            done_ = true;
            waiters.swap(waiters_);
        }
        for (auto [executor, waiter] : waiters)
            resumeOn(*executor, waiter);
    }

    [[nodiscard]] Outcome<T> takeOutcome() {
        const std::lock_guard guard(mutex_);
        requireUse(done_, "its result was taken before its end");
        requireUse(!isTaken_, "its result was taken twice");
        isTaken_ = true;
        return std::move(outcome_);
    }

    [[nodiscard]] Outcome<T> copyOutcome() {
        const std::lock_guard guard(mutex_);
        requireUse(!isTaken_, "its result was awaited after it had been taken");
        return outcome_;
    }

private:
    std::mutex mutex_;
    bool done_ = false;
    bool isTaken_ = false;
    Outcome<T> outcome_;
    std::vector<std::pair<Executor*, std::coroutine_handle<>>> waiters_;
    std::optional<std::stop_callback<std::function<void()>>> link_;
};

/// Suspends until a task has ended, however it ended and also when the waiter itself has been cancelled.
template <class T> class EndOfTask {
public:
    explicit EndOfTask(std::shared_ptr<TaskState<T>> state) : state_(std::move(state)) {}
    [[nodiscard]] bool await_ready() const { return state_->done(); }
    template <class Promise> bool await_suspend(std::coroutine_handle<Promise> waiter) {
        return state_->addWaiter(contextOf(waiter).executor, waiter);
    }
    void await_resume() const noexcept {}

private:
    std::shared_ptr<TaskState<T>> state_;
};

} // namespace detail

/// A task that was started. Copyable; all copies name the same task, and dropping them all does not stop it. A
/// handle made by default names no task, and only asking whether it does is allowed. Any thread may cancel or ask;
/// many tasks may await the end.
template <class T = void> class TaskHandle {
public:
    TaskHandle() = default;
    explicit TaskHandle(std::shared_ptr<detail::TaskState<T>> state) : state_(std::move(state)) {}

    explicit operator bool() const { return state_ != nullptr; }
    bool operator==(const TaskHandle&) const = default;
    void reset() { state_.reset(); }

    /// Asks the task to end; it does so at its next look at its token.
    void cancel() const { state().stop.request_stop(); }
    [[nodiscard]] bool isCancelled() const { return state().stop.stop_requested(); }
    [[nodiscard]] bool done() const { return state().done(); }

    /// `co_await handle.join()` goes on when the task has ended. A joiner that is cancelled goes on waiting and has
    /// to look at its own token afterwards.
    [[nodiscard]] detail::EndOfTask<T> join() const {
        (void)state();
        return detail::EndOfTask<T>(state_);
    }

    /// `co_await handle.value()` gives a copy of the result, or throws what the task threw.
    [[nodiscard]] Task<T> value() const {
        (void)state();
        return valueOf(state_);
    }

    /// The result of a task that has ended, moved out, or what the task threw; for its one owner, once.
    [[nodiscard]] T take() const {
        if constexpr (std::is_void_v<T>)
            detail::takeOutcome<T>(state().takeOutcome());
        else
            return detail::takeOutcome<T>(state().takeOutcome());
    }

private:
    [[nodiscard]] detail::TaskState<T>& state() const {
        detail::requireUse(state_ != nullptr, "a handle that names none was used");
        return *state_;
    }

    static Task<T> valueOf(std::shared_ptr<detail::TaskState<T>> state) {
        detail::EndOfTask<T> end(state);
        co_await end;
        detail::Outcome<T> outcome = state->copyOutcome();
        if constexpr (std::is_void_v<T>)
            detail::takeOutcome<T>(std::move(outcome));
        else
            co_return detail::takeOutcome<T>(std::move(outcome));
    }

    std::shared_ptr<detail::TaskState<T>> state_;
};

} // namespace kestrin
