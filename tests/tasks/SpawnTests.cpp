#include "tasks/Spawn.h"

#include "fakes/ManualExecutor.h"
#include "fakes/VirtualClock.h"
#include "tasks/Sleep.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace kestrin {
namespace {

using std::chrono::seconds;

/// A member of a frame that tells when the frame is gone.
class FrameMark {
public:
    explicit FrameMark(bool& gone) : gone_(&gone) {}
    FrameMark(FrameMark&& other) noexcept : gone_(std::exchange(other.gone_, nullptr)) {}
    FrameMark& operator=(FrameMark&&) = delete;
    ~FrameMark() {
        if (gone_) *gone_ = true;
    }

private:
    bool* gone_;
};

Task<> markedSleep(Clock& clock, [[maybe_unused]] FrameMark mark) {
    co_await sleepUntil(clock, clock.now() + seconds(1));
}

Task<> markedFailure([[maybe_unused]] FrameMark mark) {
    throw std::runtime_error("broken");
    co_return;
}

Task<bool> goneWhenJoined(TaskHandle<> other, bool& gone) {
    co_await other.join();
    co_return gone;
}

Task<bool> sleepsThrough(Clock& clock) {
    const SleepResult result = co_await sleepUntil(clock, clock.now() + seconds(5));
    co_return result == SleepResult::Elapsed;
}

Task<> setting(bool& ran) {
    ran = true;
    co_return;
}

TEST(Spawning, neverRunsTheTaskInside) {
    ManualExecutor executor;
    bool ran = false;
    const TaskHandle<> handle = spawn(executor, setting(ran));
    EXPECT_FALSE(ran);
    EXPECT_FALSE(handle.done());
    executor.runUntilIdle();
    EXPECT_TRUE(ran);
    EXPECT_TRUE(handle.done());
}

TEST(Spawning, startsTasksInTheOrderOfTheirSpawning) {
    ManualExecutor executor;
    bool first = false;
    bool second = false;
    const TaskHandle<> one = spawn(executor, setting(first));
    const TaskHandle<> two = spawn(executor, setting(second));
    executor.runOne();
    EXPECT_TRUE(first);
    EXPECT_FALSE(second);
    executor.runOne();
    EXPECT_TRUE(second);
}

TEST(Spawning, destroysTheFrameBeforeTheEndIsAnnounced) {
    ManualExecutor executor;
    VirtualClock clock;
    bool gone = false;
    FrameMark mark(gone);
    const TaskHandle<> handle = spawn(executor, markedSleep(clock, std::move(mark)));
    const TaskHandle<bool> joiner = spawn(executor, goneWhenJoined(handle, gone));
    executor.runUntilIdle();
    EXPECT_FALSE(gone);
    clock.advance(seconds(1));
    executor.runOne();
    EXPECT_TRUE(handle.done());
    EXPECT_TRUE(gone);
    executor.runUntilIdle();
    EXPECT_TRUE(joiner.take());
}

TEST(Spawning, destroysTheFrameOfAFailedTaskBeforeTheEndIsAnnounced) {
    ManualExecutor executor;
    bool gone = false;
    FrameMark mark(gone);
    const TaskHandle<> handle = spawn(executor, markedFailure(std::move(mark)));
    const TaskHandle<bool> joiner = spawn(executor, goneWhenJoined(handle, gone));
    executor.runUntilIdle();
    EXPECT_TRUE(joiner.take());
    EXPECT_THROW(handle.take(), std::runtime_error);
}

TEST(Spawning, keepsATaskRunningWhoseHandleWasDropped) {
    ManualExecutor executor;
    VirtualClock clock;
    bool gone = false;
    FrameMark mark(gone);
    spawn(executor, markedSleep(clock, std::move(mark)));
    executor.runUntilIdle();
    EXPECT_FALSE(gone);
    clock.advance(seconds(1));
    executor.runUntilIdle();
    EXPECT_TRUE(gone);
}

TEST(Spawning, givesEachTaskACancellationOfItsOwn) {
    ManualExecutor executor;
    VirtualClock clock;
    const TaskHandle<bool> stopped = spawn(executor, sleepsThrough(clock));
    const TaskHandle<bool> other = spawn(executor, sleepsThrough(clock));
    executor.runUntilIdle();
    stopped.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(stopped.take());
    EXPECT_FALSE(other.done());
    clock.advance(seconds(5));
    executor.runUntilIdle();
    EXPECT_TRUE(other.take());
}

TEST(AChild, isCancelledAlongWithItsParent) {
    ManualExecutor executor;
    VirtualClock clock;
    std::stop_source parent;
    const TaskHandle<bool> child = spawnChild(executor, parent.get_token(), sleepsThrough(clock));
    executor.runUntilIdle();
    parent.request_stop();
    executor.runUntilIdle();
    EXPECT_TRUE(child.isCancelled());
    EXPECT_FALSE(child.take());
    EXPECT_EQ(clock.timerCount(), 0u);
}

TEST(AChild, ofACancelledParentIsBornCancelled) {
    ManualExecutor executor;
    VirtualClock clock;
    std::stop_source parent;
    parent.request_stop();
    const TaskHandle<bool> child = spawnChild(executor, parent.get_token(), sleepsThrough(clock));
    EXPECT_TRUE(child.isCancelled());
    executor.runUntilIdle();
    EXPECT_FALSE(child.take());
}

TEST(AChild, doesNotCancelItsParent) {
    ManualExecutor executor;
    VirtualClock clock;
    std::stop_source parent;
    const TaskHandle<bool> child = spawnChild(executor, parent.get_token(), sleepsThrough(clock));
    executor.runUntilIdle();
    child.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(child.take());
    EXPECT_FALSE(parent.stop_requested());
}

TEST(AChild, thatHasEndedIsNoLongerCancelledByItsParent) {
    ManualExecutor executor;
    std::stop_source parent;
    bool ran = false;
    const TaskHandle<> child = spawnChild(executor, parent.get_token(), setting(ran));
    executor.runUntilIdle();
    parent.request_stop();
    EXPECT_TRUE(child.done());
    EXPECT_FALSE(child.isCancelled());
}

} // namespace
} // namespace kestrin
