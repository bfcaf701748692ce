#pragma once

#include "tasks/Executor.h"
#include "tasks/Use.h"

#include <coroutine>
#include <exception>
#include <stop_token>
#include <type_traits>
#include <utility>
#include <variant>

namespace kestrin {

/// Where a task runs and what cancels it. A task inherits both from whoever awaits it.
struct TaskContext {
    Executor* executor = nullptr;
    std::stop_token stopToken;

    [[nodiscard]] bool isCancelled() const { return stopToken.stop_requested(); }
};

namespace detail {

/// What every coroutine of this runtime carries.
struct PromiseBase {
    TaskContext context;
    /// Nobody, until the awaiting coroutine has really been suspended.
    std::coroutine_handle<> continuation = std::noop_coroutine();
    bool isStarted = false;
};

inline void requireOwnExecutor(const TaskContext& context) noexcept {
    requireUse(Executor::current() == context.executor, "it was resumed off its executor");
}

/// The context of a coroutine that is about to wait.
template <class Promise> const TaskContext& contextOf(std::coroutine_handle<Promise> waiter) noexcept {
    const TaskContext& context = waiter.promise().context;
    requireOwnExecutor(context);
    return context;
}

/// The one way in which a suspended coroutine goes on: by a post to its executor, never inside whoever ends its
/// wait.
inline void resumeOn(Executor& executor, std::coroutine_handle<> waiter) noexcept {
    executor.post([&executor, waiter] {
        requireUse(Executor::current() == &executor, "its executor ran it as another one's");
        waiter.resume();
    });
}

struct ResumeContinuation {
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> finished) const noexcept {
        requireOwnExecutor(finished.promise().context);
        return finished.promise().continuation;
    }
    void await_resume() const noexcept {}
};

struct VoidResult {
    bool operator==(const VoidResult&) const = default;
};

/// `T`, or a value that stands for the nothing of a `Task<void>`.
template <class T> using StoredResult = std::conditional_t<std::is_void_v<T>, VoidResult, T>;

/// Nothing yet, the result, or what was thrown.
template <class T> using Outcome = std::variant<std::monostate, StoredResult<T>, std::exception_ptr>;

template <class T> StoredResult<T> takeOutcome(Outcome<T>&& outcome) {
    if (auto* thrown = std::get_if<std::exception_ptr>(&outcome)) std::rethrow_exception(*thrown);
    return std::get<1>(std::move(outcome));
}

template <class T> struct PromiseResult : PromiseBase {
    Outcome<T> outcome;
    template <class U>
        requires std::is_convertible_v<U, T>
    void return_value(U&& value) {
        outcome.template emplace<1>(std::forward<U>(value));
    }
};

template <> struct PromiseResult<void> : PromiseBase {
    Outcome<void> outcome;
    void return_void() { outcome.emplace<1>(); }
};

} // namespace detail

/// A lazy coroutine: nothing runs until it is awaited or spawned, which may happen once. Move-only. Destroying it
/// destroys its frame; only a task that was never started may be destroyed unfinished.
template <class T = void> class [[nodiscard]] Task {
public:
    using Result = T;

    struct promise_type : detail::PromiseResult<T> {
        Task get_return_object() { return Task(std::coroutine_handle<promise_type>::from_promise(*this)); }
        std::suspend_always initial_suspend() const noexcept { return {}; }
        detail::ResumeContinuation final_suspend() const noexcept { return {}; }
        void unhandled_exception() { this->outcome.template emplace<2>(std::current_exception()); }
    };

    Task(Task&& other) noexcept : frame_(std::exchange(other.frame_, {})) {}
    Task& operator=(Task&& other) noexcept {
        if (this != &other) {
            destroy();
            frame_ = std::exchange(other.frame_, {});
        }
        return *this;
    }
    ~Task() { destroy(); }

    class Awaiter {
    public:
        explicit Awaiter(std::coroutine_handle<promise_type> frame) : frame_(frame) {}
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        /// Runs the task up to its first suspension. One that ends without any never suspends its parent, so that
        /// a loop over such tasks needs no more stack than one of them: a compiler that does not optimise turns
        /// each transfer of control into a nested call. The executor is serial: nothing ends the task in between.
        template <class Promise> bool await_suspend(std::coroutine_handle<Promise> parent) {
            frame_.promise().context = detail::contextOf(parent);
            frame_.promise().isStarted = true;
            frame_.resume();
            if (frame_.done()) return false;
            frame_.promise().continuation = parent;
            return true;
        }
        T await_resume() {
            if constexpr (std::is_void_v<T>)
                detail::takeOutcome<T>(std::move(frame_.promise().outcome));
            else
                return detail::takeOutcome<T>(std::move(frame_.promise().outcome));
        }

    private:
        std::coroutine_handle<promise_type> frame_;
    };

    Awaiter operator co_await() && {
        detail::requireUse(static_cast<bool>(frame_), "it was awaited after it had been moved away");
        detail::requireUse(!frame_.promise().isStarted, "it was awaited twice");
        return Awaiter(frame_);
    }

    /// False once it has been moved away.
    explicit operator bool() const { return static_cast<bool>(frame_); }

private:
    explicit Task(std::coroutine_handle<promise_type> frame) : frame_(frame) {}
    void destroy() {
        if (frame_) frame_.destroy();
    }

    std::coroutine_handle<promise_type> frame_;
};

/// `co_await currentContext()`: the executor and stop token of the coroutine that asks.
class CurrentContext {
public:
    CurrentContext() = default;
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class Promise> bool await_suspend(std::coroutine_handle<Promise> asking) {
        context_ = detail::contextOf(asking);
        return false;
    }
    TaskContext await_resume() { return std::move(context_); }

private:
    TaskContext context_;
};
inline CurrentContext currentContext() {
    return CurrentContext();
}

} // namespace kestrin
