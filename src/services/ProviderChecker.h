#pragma once

#include "model/ProviderCheckRecord.h"
#include "model/ProviderDefinition.h"
#include "services/ProviderCheckDependencies.h"
#include "tasks/Clock.h"
#include "tasks/Task.h"

#include <chrono>
#include <functional>

namespace kestrin {

/// Checks one status service: judges its endpoints, resolves their hosts, refuses private answers, and asks one
/// endpoint after the other until one gives a state. Holds no state of its own; any number of checks at once, any
/// thread.
class ProviderChecker {
public:
    /// The time of day, for time stamps.
    using WallClock = std::function<std::chrono::sys_seconds()>;

    ProviderChecker(Clock& clock, WallClock wallClock);

    /// Always gives a record, never throws: whatever went wrong, a cancellation included, is in the record. The
    /// endpoints share `timeout` evenly, with three seconds at least for each; name resolution is not counted in.
    /// `elapsedMS` counts from here.
    [[nodiscard]] Task<ProviderCheckRecord> checkProvider(ProviderDefinition definition,
        ProviderCheckDependencies dependencies, std::chrono::milliseconds timeout) const;

private:
    struct Parts {
        Clock& clock;
        WallClock wallClock;
    };
    static Task<ProviderCheckRecord> check(Parts parts, ProviderDefinition definition,
        ProviderCheckDependencies dependencies, std::chrono::milliseconds timeout);

    Parts parts_;
};

} // namespace kestrin
