#include "tasks/Clock.h"

namespace kestrin {

Instant saturatingAfter(Instant start, std::int64_t seconds) {
    constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
    std::int64_t offset = 0;
    std::int64_t sum = 0;
    if (__builtin_mul_overflow(seconds, nanosecondsPerSecond, &offset) ||
        __builtin_add_overflow(start.time_since_epoch().count(), offset, &sum))
        return seconds < 0 ? Instant::min() : Instant::max();
    return Instant(std::chrono::nanoseconds(sum));
}

} // namespace kestrin
