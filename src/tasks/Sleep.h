#pragma once

#include "tasks/Clock.h"
#include "tasks/Task.h"

#include <atomic>
#include <memory>
#include <optional>

namespace kestrin {

enum class SleepResult { Elapsed, Cancelled };

/// `co_await sleepUntil(clock, instant)`: goes on at the instant, or as soon as the task is cancelled. A clock that
/// ends cancels the sleep.
class SleepUntil {
public:
    SleepUntil(Clock& clock, Instant when) : clock_(clock), when_(when), race_(std::make_shared<Race>()) {}

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class Promise> void await_suspend(std::coroutine_handle<Promise> sleeper) {
        const TaskContext& context = detail::contextOf(sleeper);
        race_->sleeper = sleeper;
        race_->executor = context.executor;
        timer_ = clock_.schedule(when_, [alarm = std::make_shared<Alarm>(race_)] { alarm->ring(); });
        cancellation_.emplace(
            context.stopToken, std::function<void()>([race = race_] { race->end(SleepResult::Cancelled); }));
    }
    SleepResult await_resume() {
        cancellation_.reset();
        // A timer that is gone needs no cancelling, and its clock may be gone as well.
        if (!race_->timerIsGone) clock_.cancel(timer_);
        return race_->result;
    }

private:
    /// The timer and the cancellation race; the first wakes the sleeper, by its executor.
    struct Race {
        std::atomic<bool> isOver = false;
        std::atomic<bool> timerIsGone = false;
        std::coroutine_handle<> sleeper;
        Executor* executor = nullptr;
        SleepResult result = SleepResult::Elapsed;

        void end(SleepResult how) {
            if (isOver.exchange(true)) return;
            result = how;
            detail::resumeOn(*executor, sleeper);
        }
    };

    /// What the clock holds. A clock that drops it without ringing has ended.
    class Alarm {
    public:
        explicit Alarm(std::shared_ptr<Race> race) : race_(std::move(race)) {}
        Alarm(const Alarm&) = delete;
        Alarm& operator=(const Alarm&) = delete;
        ~Alarm() {
            race_->timerIsGone = true;
            race_->end(SleepResult::Cancelled);
        }
        void ring() const { race_->end(SleepResult::Elapsed); }

    private:
        std::shared_ptr<Race> race_;
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
