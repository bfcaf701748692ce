#pragma once

#include "tasks/Clock.h"
#include "tasks/Task.h"

#include <atomic>
#include <memory>
#include <optional>

namespace kestrin {

enum class SleepResult { Elapsed, Cancelled };

/// `co_await sleepUntil(clock, instant)`: goes on at the instant, or as soon as the task is cancelled.
class SleepUntil {
public:
    SleepUntil(Clock& clock, Instant when) : clock_(clock), when_(when), race_(std::make_shared<Race>()) {}

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class Promise> void await_suspend(std::coroutine_handle<Promise> sleeper) {
        race_->sleeper = sleeper;
        race_->executor = sleeper.promise().context.executor;
        timer_ = clock_.schedule(when_, [race = race_] { race->end(SleepResult::Elapsed); });
        cancellation_.emplace(sleeper.promise().context.stopToken,
            std::function<void()>([race = race_] { race->end(SleepResult::Cancelled); }));
    }
    SleepResult await_resume() {
        cancellation_.reset();
        clock_.cancel(timer_);
        return race_->result;
    }

private:
    /// The timer and the cancellation race; the first wakes the sleeper, by its executor.
    struct Race {
        std::atomic<bool> over = false;
        std::coroutine_handle<> sleeper;
        Executor* executor = nullptr;
        SleepResult result = SleepResult::Elapsed;

        void end(SleepResult how) {
            if (over.exchange(true)) return;
            result = how;
            executor->post([waking = sleeper] { waking.resume(); });
        }
    };

    Clock& clock_;
    Instant when_;
    std::shared_ptr<Race> race_;
    Clock::TimerId timer_ = 0;
    std::optional<std::stop_callback<std::function<void()>>> cancellation_;
};

inline SleepUntil sleepUntil(Clock& clock, Instant when) {
    return SleepUntil(clock, when);
}

} // namespace kestrin
