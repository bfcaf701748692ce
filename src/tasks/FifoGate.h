#pragma once

#include "tasks/Task.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <utility>

namespace kestrin {

/// Lets one operation in at a time, or as many as it has places, first come, first served. A whole operation keeps
/// its turn across suspensions, which an executor alone does not give. Not re-entrant. A wait is not cancellable:
/// look at the token after entering. Any thread. Copies are one gate, which lasts while turns are held.
class FifoGate {
    struct State;

public:
    /// The right to be inside; leaving is destroying it.
    class Turn {
    public:
        explicit Turn(std::shared_ptr<State> state) : state_(std::move(state)) {}
        Turn(Turn&& other) noexcept = default;
        Turn& operator=(Turn&&) = delete;
        ~Turn() {
            if (state_) state_->leave();
        }

    private:
        std::shared_ptr<State> state_;
    };

    class Entry {
    public:
        explicit Entry(std::shared_ptr<State> state) : state_(std::move(state)) {}
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        template <class Promise> bool await_suspend(std::coroutine_handle<Promise> waiter) {
            return !state_->enterOrQueue(waiter.promise().context.executor, waiter);
        }
        [[nodiscard]] Turn await_resume() { return Turn(std::move(state_)); }

    private:
        std::shared_ptr<State> state_;
    };

    explicit FifoGate(std::size_t places = 1) : state_(std::make_shared<State>(places)) {}

    /// `const FifoGate::Turn turn = co_await gate.enter();`
    [[nodiscard]] Entry enter() const { return Entry(state_); }

private:
    struct State {
        explicit State(std::size_t places) : freePlaces(places) {}

        std::mutex mutex;
        std::size_t freePlaces;
        std::deque<std::pair<Executor*, std::coroutine_handle<>>> queue;

        bool enterOrQueue(Executor* executor, std::coroutine_handle<> waiter) {
            const std::lock_guard guard(mutex);
            if (freePlaces == 0) {
                queue.emplace_back(executor, waiter);
                return false;
            }
            --freePlaces;
            return true;
        }

        void leave() {
            const std::lock_guard guard(mutex);
            if (queue.empty()) {
                ++freePlaces;
                return;
            }
            // The turn passes directly, so that a newcomer cannot slip in between.
            auto [executor, waiter] = queue.front();
            queue.pop_front();
            executor->post([waiter] { waiter.resume(); });
        }
    };

    std::shared_ptr<State> state_;
};

} // namespace kestrin
