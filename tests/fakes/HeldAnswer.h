#pragma once

#include "tasks/Task.h"

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace kestrin {

/// A value that one coroutine waits for until the test gives it. The first one given counts. One thread.
template <class T> class HeldAnswer {
    struct State {
        std::optional<T> value;
        Executor* executor = nullptr;
        std::coroutine_handle<> waiter;
    };

public:
    class Wait {
    public:
        explicit Wait(std::shared_ptr<State> state) : state_(std::move(state)) {}
        [[nodiscard]] bool await_ready() const noexcept { return state_->value.has_value(); }
        template <class Promise> void await_suspend(std::coroutine_handle<Promise> waiter) {
            state_->executor = waiter.promise().context.executor;
            state_->waiter = waiter;
        }
        T await_resume() { return *state_->value; }

    private:
        std::shared_ptr<State> state_;
    };

    [[nodiscard]] Wait wait() const { return Wait(state_); }

    void give(T value) const {
        if (state_->value) return;
        state_->value = std::move(value);
        if (state_->waiter) state_->executor->post([waiter = state_->waiter] { waiter.resume(); });
    }

    [[nodiscard]] bool isGiven() const { return state_->value.has_value(); }

private:
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace kestrin
