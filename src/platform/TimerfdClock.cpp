#include "platform/TimerfdClock.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <sys/timerfd.h>
#include <system_error>
#include <unistd.h>

namespace kestrin {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

timespec kernelTime(Instant when) {
    // Zero would switch the timer off, and the kernel takes no instant before the boot.
    const std::int64_t count = std::max<std::int64_t>(when.time_since_epoch().count(), 1);
    return {static_cast<time_t>(count / nanosecondsPerSecond), static_cast<long>(count % nanosecondsPerSecond)};
}

} // namespace

TimerfdClock::Descriptor::Descriptor() : descriptor_(timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "timerfd_create");
}

TimerfdClock::Descriptor::~Descriptor() {
    close(descriptor_);
}

TimerfdClock::TimerfdClock(QObject* parent) : QObject(parent), notifier_(descriptor_.get(), QSocketNotifier::Read) {
    connect(&notifier_, &QSocketNotifier::activated, this, [this] { fire(); });
}

TimerfdClock::~TimerfdClock() = default;

Instant TimerfdClock::now() const {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return Instant(std::chrono::nanoseconds(time.tv_sec * nanosecondsPerSecond + time.tv_nsec));
}

Clock::TimerId TimerfdClock::schedule(Instant when, std::function<void()> callback) {
    const std::lock_guard lock(mutex_);
    const TimerId timer = ++lastTimer_;
    pending_.emplace(Key{when, timer}, std::move(callback));
    deadlines_.emplace(timer, when);
    if (pending_.begin()->first.second == timer) arm();
    return timer;
}

void TimerfdClock::cancel(TimerId timer) {
    std::function<void()> dropped; // destroyed without the lock: it may own what calls the clock again
    const std::lock_guard lock(mutex_);
    const auto deadline = deadlines_.find(timer);
    if (deadline == deadlines_.end()) return;
    const auto entry = pending_.find({deadline->second, timer});
    const bool wasNext = entry == pending_.begin();
    dropped = std::move(entry->second);
    pending_.erase(entry);
    deadlines_.erase(deadline);
    if (wasNext) arm();
}

bool TimerfdClock::isArmed() const {
    itimerspec set{};
    timerfd_gettime(descriptor_.get(), &set);
    return set.it_value.tv_sec != 0 || set.it_value.tv_nsec != 0;
}

void TimerfdClock::arm() {
    itimerspec set{};
    if (!pending_.empty()) set.it_value = kernelTime(pending_.begin()->first.first);
    timerfd_settime(descriptor_.get(), TFD_TIMER_ABSTIME, &set, nullptr);
}

std::function<void()> TimerfdClock::takeDue(Instant now, TimerId newest) {
    const std::lock_guard lock(mutex_);
    const auto next =
        std::ranges::find_if(pending_, [&](const auto& entry) { return entry.first.second <= newest; });
    if (next == pending_.end() || next->first.first > now) return {};
    auto callback = std::move(next->second);
    deadlines_.erase(next->first.second);
    pending_.erase(next);
    // Set again before the callback runs, which may open a loop of its own.
    arm();
    return callback;
}

void TimerfdClock::fire() {
    std::uint64_t expirations = 0;
    while (read(descriptor_.get(), &expirations, sizeof expirations) < 0 && errno == EINTR) {
    }
    TimerId newest = 0;
    {
        const std::lock_guard lock(mutex_);
        newest = lastTimer_;
        // An expiry that was overtaken by a cancellation has consumed the timer.
        arm();
    }
    // Timers set by these callbacks wait for the next turn, or a deadline in the past could keep the loop busy.
    const Instant turn = now();
    while (const auto callback = takeDue(turn, newest))
        callback();
}

} // namespace kestrin
