#pragma once

#include <chrono>
#include <functional>
#include <sys/resource.h>

namespace kestrin::bench {

using Microseconds = std::chrono::duration<double, std::micro>;

/// What all threads of this process have used so far.
inline Microseconds cpuTime() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto of = [](const timeval& time) {
        return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
    };
    return of(usage.ru_utime) + of(usage.ru_stime);
}

/// What one of a series of them used, after a few that do not count.
inline Microseconds cpuTimeOfOne(int count, const std::function<void()>& make) {
    for (int warmingUp = 0; warmingUp < 3; ++warmingUp)
        make();
    const Microseconds before = cpuTime();
    for (int index = 0; index < count; ++index)
        make();
    return (cpuTime() - before) / count;
}

} // namespace kestrin::bench
