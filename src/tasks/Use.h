#pragma once

#include <cstdio>
#include <cstdlib>

namespace kestrin::detail {

/// Ends the process with a sentence when the runtime is misused. In every build: going on would resume or destroy a
/// coroutine twice.
inline void requireUse(bool isCorrect, const char* rule) noexcept {
    if (isCorrect) [[likely]]
        return;
    std::fprintf(stderr, "Misuse of a task: %s\n", rule);
    std::abort();
}

} // namespace kestrin::detail
