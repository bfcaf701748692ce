#pragma once

#include <chrono>
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

} // namespace kestrin::bench
