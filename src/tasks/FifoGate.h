#pragma once

#include "tasks/Task.h"

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace kestrin {

/// Lets one operation in at a time, or as many as it has places, first come, first served. A whole operation keeps
/// its turn across suspensions, which an executor alone does not give. Not re-entrant. Any thread. Copies are one
/// gate, which lasts while turns are held.
class FifoGate {
    struct State;

public:
    /// The right to be inside; leaving is destroying it.
    class Turn {
    public:
        explicit Turn(std::shared_ptr<State> state) : state_(std::move(state)) {}
        Turn(Turn&& other) noexcept = default;
        Turn& operator=(Turn&&) = delete;
        ~Turn();

    private:
        std::shared_ptr<State> state_;
    };

    class Entry;

    explicit FifoGate(std::size_t places = 1) : state_(std::make_shared<State>(places)) {}

    /// `const std::optional<FifoGate::Turn> turn = co_await gate.enter();`
    /// Nothing once the task is cancelled: it leaves the queue at once and whoever is behind it moves up. A turn
    /// that was given before the cancellation is kept.
    [[nodiscard]] Entry enter() const;

private:
    struct Waiter {
        Executor* executor = nullptr;
        std::coroutine_handle<> coroutine;
        bool isInside = false; ///< it has been given a turn
    };

    struct State {
        explicit State(std::size_t places) : freePlaces(places) {}

        std::mutex mutex;
        std::size_t freePlaces;
        std::list<std::shared_ptr<Waiter>> queue;

        bool enterOrQueue(const std::shared_ptr<Waiter>& waiter);
        void leave();
        void giveUp(const std::shared_ptr<Waiter>& waiter);
    };

    std::shared_ptr<State> state_;
};

class FifoGate::Entry {
public:
    explicit Entry(std::shared_ptr<State> state) : state_(std::move(state)) {}
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class Promise> bool await_suspend(std::coroutine_handle<Promise> coroutine) {
        const TaskContext& context = detail::contextOf(coroutine);
        if (context.isCancelled()) return false;
        waiter_->executor = context.executor;
        waiter_->coroutine = coroutine;
        if (state_->enterOrQueue(waiter_)) return false;
        cancellation_.emplace(context.stopToken,
            std::function<void()>([state = state_, waiter = waiter_] { state->giveUp(waiter); }));
        return true;
    }
    [[nodiscard]] std::optional<Turn> await_resume() {
        cancellation_.reset();
        if (!waiter_->isInside) return std::nullopt;
        return Turn(std::move(state_));
    }

private:
    std::shared_ptr<State> state_;
    std::shared_ptr<Waiter> waiter_ = std::make_shared<Waiter>();
    std::optional<std::stop_callback<std::function<void()>>> cancellation_;
};

inline FifoGate::Entry FifoGate::enter() const {
    return Entry(state_);
}

} // namespace kestrin
