#pragma once

#include "fakes/ManualExecutor.h"
#include "fakes/VirtualClock.h"

#include <chrono>
#include <gtest/gtest.h>

namespace kestrin {

/// Tasks on one executor in virtual time.
class VirtualTimeTest : public testing::Test {
protected:
    /// Second by second, so that what a task does at one has happened before the next.
    void passSeconds(int count) {
        executor.runUntilIdle();
        for (int second = 0; second < count; ++second) {
            clock.advance(std::chrono::seconds(1));
            executor.runUntilIdle();
        }
    }

    ManualExecutor executor;
    VirtualClock clock;
};

} // namespace kestrin
