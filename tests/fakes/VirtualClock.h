#pragma once

#include "tasks/Clock.h"

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace kestrin {

/// A clock that stands still until the test moves it. Callbacks run inside `advance`, in the order of their
/// instants and, at one instant, in the order in which they were scheduled.
class VirtualClock : public Clock {
public:
    [[nodiscard]] Instant now() const override {
        const std::lock_guard guard(mutex_);
        return now_;
    }

    TimerId schedule(Instant when, std::function<void()> callback) override {
        const std::lock_guard guard(mutex_);
        timers_.emplace(std::pair(when, ++lastTimer_), std::move(callback));
        return lastTimer_;
    }

    void cancel(TimerId timer) override {
        const std::lock_guard guard(mutex_);
        std::erase_if(timers_, [timer](const auto& entry) { return entry.first.second == timer; });
    }

    void advance(std::chrono::nanoseconds duration) {
        const Instant end = now() + duration;
        while (true) {
            std::function<void()> due;
            {
                const std::lock_guard guard(mutex_);
                if (timers_.empty() || timers_.begin()->first.first > end) {
                    now_ = end;
                    return;
                }
                now_ = std::max(now_, timers_.begin()->first.first);
                due = std::move(timers_.begin()->second);
                timers_.erase(timers_.begin());
            }
            due();
        }
    }

    /// The earliest deadline that is set, if any.
    [[nodiscard]] std::optional<Instant> nextDeadline() const {
        const std::lock_guard guard(mutex_);
        if (timers_.empty()) return std::nullopt;
        return timers_.begin()->first.first;
    }

    [[nodiscard]] std::size_t timerCount() const {
        const std::lock_guard guard(mutex_);
        return timers_.size();
    }

private:
    mutable std::mutex mutex_;
    Instant now_{std::chrono::hours(1)};
    TimerId lastTimer_ = 0;
    std::map<std::pair<Instant, TimerId>, std::function<void()>> timers_;
};

} // namespace kestrin
