#include "platform/EventProcessing.h"

#include "platform/QtExecutor.h"

#include <chrono>
#include <gtest/gtest.h>

namespace kestrin {

TEST(ProcessingEvents, lastsUntilTheConditionHolds) {
    QtExecutor executor;
    int ran = 0;
    for (int count = 0; count < 3; ++count)
        executor.post([&] { executor.post([&] { ++ran; }); });
    EXPECT_TRUE(processEventsUntil([&] { return ran == 3; }, std::chrono::minutes(1)));
}

TEST(ProcessingEvents, leavesEverythingToOthersWhenTheConditionHoldsAlready) {
    QtExecutor executor;
    bool hasRun = false;
    executor.post([&] { hasRun = true; });
    EXPECT_TRUE(processEventsUntil([] { return true; }, std::chrono::minutes(1)));
    EXPECT_FALSE(hasRun);
}

TEST(ProcessingEvents, givesUpWhenItsPatienceIsOver) {
    // Qt shifts long timers to suit each other; a patience that it shifted forward must be over all the same.
    for (const int milliseconds : {0, 1, 30, 150, 250})
        EXPECT_FALSE(processEventsUntil([] { return false; }, std::chrono::milliseconds(milliseconds)));
}

} // namespace kestrin
