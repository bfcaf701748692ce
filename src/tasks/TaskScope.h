#pragma once

#include "tasks/Spawn.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

namespace kestrin {

/// Owns tasks: starts them, cancels them together and knows when the last one has ended. A scope inside another is
/// cancelled along with it, and its tasks count in both, so the program ends when its outermost scope is empty.
/// Destroying a scope cancels its tasks without waiting; what they use must outlive them, so join first. Any
/// thread.
class TaskScope {
public:
    TaskScope();
    ~TaskScope();
    TaskScope(const TaskScope&) = delete;
    TaskScope& operator=(const TaskScope&) = delete;

    /// A scope inside this one.
    [[nodiscard]] TaskScope inner() const { return TaskScope(state_); }

    /// Starts a task on `executor`, which must outlive it. In a cancelled scope a task starts cancelled.
    template <class T> TaskHandle<T> spawn(Executor& executor, Task<T> task) {
        auto state = std::make_shared<detail::TaskState<T>>();
        state->followCancellation(state_->stop.get_token());
        return detail::launch(executor, std::move(task), std::move(state), Membership(state_));
    }

    /// Asks every task, also those that start later, to end.
    void cancel() { state_->stop.request_stop(); }
    [[nodiscard]] bool isCancelled() const { return state_->stop.stop_requested(); }
    /// How many tasks have not ended.
    [[nodiscard]] std::size_t size() const { return state_->size(); }

    /// Goes on when no task is left, also when the joiner is cancelled. A task never joins its own scope.
    [[nodiscard]] Task<> join() const { return untilEmpty(state_); }

private:
    struct State {
        std::shared_ptr<State> outer;
        std::stop_source stop;
        std::optional<std::stop_callback<std::function<void()>>> link;
        std::mutex mutex;
        std::size_t running = 0;
        std::vector<std::pair<Executor*, std::coroutine_handle<>>> joiners;

        void enter();
        void leave();
        [[nodiscard]] std::size_t size();
        bool addJoiner(Executor* executor, std::coroutine_handle<> joiner);
    };

    /// One task's place in the scope and in those around it.
    class Membership {
    public:
        explicit Membership(std::shared_ptr<State> state) : state_(std::move(state)) { state_->enter(); }
        Membership(Membership&& other) noexcept = default;
        Membership& operator=(Membership&&) = delete;
        ~Membership() {
            if (state_) state_->leave();
        }

    private:
        std::shared_ptr<State> state_;
    };

    class Emptiness {
    public:
        explicit Emptiness(std::shared_ptr<State> state) : state_(std::move(state)) {}
        [[nodiscard]] bool await_ready() const { return state_->size() == 0; }
        template <class Promise> bool await_suspend(std::coroutine_handle<Promise> joiner) {
            return state_->addJoiner(detail::contextOf(joiner).executor, joiner);
        }
        void await_resume() const noexcept {}

    private:
        std::shared_ptr<State> state_;
    };

    explicit TaskScope(std::shared_ptr<State> outer);
    static Task<> untilEmpty(std::shared_ptr<State> state);

    std::shared_ptr<State> state_;
};

} // namespace kestrin
