#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace kestrin {

/// A monotonic time line that goes on while the machine sleeps. Only a `Clock` can read it.
struct BootClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<BootClock, duration>;
    static constexpr bool is_steady = true;
};
using Instant = BootClock::time_point;

/// Tells the time and calls back at an instant. Every operation may be called from any thread; a callback runs on a
/// thread of the clock's own choice and must be short: it posts to an executor and returns.
class Clock {
public:
    using TimerId = std::uint64_t;

    virtual ~Clock() = default;
    [[nodiscard]] virtual Instant now() const = 0;
    /// An instant that has passed calls back as soon as possible, but never inside `schedule`.
    virtual TimerId schedule(Instant when, std::function<void()> callback) = 0;
    /// A timer that has fired or is unknown is ignored.
    virtual void cancel(TimerId timer) = 0;
};

/// `start` plus a number of seconds of any size, held at the ends of the time line: a huge interval must become a
/// deadline that never comes, not one that has passed.
[[nodiscard]] Instant saturatingAfter(Instant start, std::int64_t seconds);

} // namespace kestrin
