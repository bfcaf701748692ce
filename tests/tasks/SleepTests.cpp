#include "tasks/Sleep.h"

#include "fakes/ManualExecutor.h"
#include "fakes/VirtualClock.h"
#include "tasks/Spawn.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kestrin {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

Task<SleepResult> sleeping(Clock& clock, Instant when) {
    const SleepResult result = co_await sleepUntil(clock, when);
    co_return result;
}

Task<> noting(Clock& clock, Instant when, std::string name, std::vector<std::string>& order) {
    co_await sleepUntil(clock, when);
    order.push_back(name);
}

Task<int> sleepingTwice(Clock& clock) {
    int cancelled = 0;
    for (int count = 0; count < 2; ++count) {
        const SleepResult result = co_await sleepUntil(clock, clock.now() + seconds(1));
        if (result == SleepResult::Cancelled) ++cancelled;
    }
    co_return cancelled;
}

class ASleep : public testing::Test {
protected:
    ManualExecutor executor;
    VirtualClock clock;
};

TEST_F(ASleep, endsAtItsInstantAndNotBefore) {
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(clock, clock.now() + seconds(3)));
    executor.runUntilIdle();
    clock.advance(seconds(3) - nanoseconds(1));
    executor.runUntilIdle();
    EXPECT_FALSE(handle.done());
    clock.advance(nanoseconds(1));
    EXPECT_FALSE(handle.done()) << "the clock's callback resumed the task itself";
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), SleepResult::Elapsed);
}

TEST_F(ASleep, untilAnInstantThatHasPassedStillGoesByTheClock) {
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(clock, clock.now() - seconds(3)));
    executor.runUntilIdle();
    EXPECT_FALSE(handle.done());
    clock.advance(nanoseconds(0));
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), SleepResult::Elapsed);
}

TEST_F(ASleep, untilTheEndOfTimeEndsByCancellationAlone) {
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(clock, Instant::max()));
    executor.runUntilIdle();
    clock.advance(std::chrono::hours(24 * 365));
    executor.runUntilIdle();
    EXPECT_FALSE(handle.done());
    handle.cancel();
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), SleepResult::Cancelled);
}

TEST_F(ASleep, endsImmediatelyWhenItIsCancelled) {
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(clock, clock.now() + seconds(3)));
    executor.runUntilIdle();
    handle.cancel();
    EXPECT_FALSE(handle.done()) << "the stop callback resumed the task itself";
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), SleepResult::Cancelled);
}

TEST_F(ASleep, takesItsTimerFromTheClockWhenItIsCancelled) {
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(clock, clock.now() + seconds(3)));
    executor.runUntilIdle();
    EXPECT_EQ(clock.timerCount(), 1u);
    handle.cancel();
    executor.runUntilIdle();
    EXPECT_EQ(clock.timerCount(), 0u);
    clock.advance(seconds(10));
    EXPECT_EQ(executor.waiting(), 0u);
}

TEST_F(ASleep, ofATaskCancelledBeforehandEndsAtOnceWithoutATimerLeft) {
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(clock, clock.now() + seconds(3)));
    handle.cancel();
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), SleepResult::Cancelled);
    EXPECT_EQ(clock.timerCount(), 0u);
}

TEST_F(ASleep, thatHasElapsedStaysElapsedWhenItIsCancelledAtTheSameInstant) {
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(clock, clock.now() + seconds(3)));
    executor.runUntilIdle();
    clock.advance(seconds(3));
    handle.cancel();
    EXPECT_EQ(executor.waiting(), 1u);
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), SleepResult::Elapsed);
}

TEST_F(ASleep, thatWasCancelledStaysCancelledWhenItsInstantComesBeforeItWakes) {
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(clock, clock.now() + seconds(3)));
    executor.runUntilIdle();
    handle.cancel();
    clock.advance(seconds(3));
    EXPECT_EQ(executor.waiting(), 1u);
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), SleepResult::Cancelled);
}

TEST_F(ASleep, afterACancelledOneIsCancelledToo) {
    const TaskHandle<int> handle = spawn(executor, sleepingTwice(clock));
    executor.runUntilIdle();
    handle.cancel();
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), 2);
}

TEST_F(ASleep, isCancelledWhenItsClockEnds) {
    auto ending = std::make_unique<VirtualClock>();
    const TaskHandle<SleepResult> handle = spawn(executor, sleeping(*ending, Instant::max()));
    executor.runUntilIdle();
    ending.reset();
    EXPECT_FALSE(handle.done()) << "the clock resumed the task itself";
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), SleepResult::Cancelled);
}

TEST_F(ASleep, wakesInTheOrderOfTheInstants) {
    std::vector<std::string> order;
    const Instant start = clock.now();
    spawn(executor, noting(clock, start + seconds(3), "third", order));
    spawn(executor, noting(clock, start + seconds(1), "first", order));
    spawn(executor, noting(clock, start + seconds(2), "second", order));
    executor.runUntilIdle();
    clock.advance(seconds(5));
    executor.runUntilIdle();
    EXPECT_EQ(order, (std::vector<std::string>{"first", "second", "third"}));
    EXPECT_EQ(clock.timerCount(), 0u);
}

} // namespace
} // namespace kestrin
