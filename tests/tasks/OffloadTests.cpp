#include "tasks/Offload.h"

#include "fakes/ManualExecutor.h"
#include "fakes/ManualPool.h"
#include "tasks/Spawn.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

namespace kestrin {
namespace {

Task<int> computed(BlockingPool& pool, std::function<int()> work) {
    Task<int> waiting = offload(pool, std::move(work));
    const int result = co_await std::move(waiting);
    co_return result;
}

Task<bool> tokenSeen(BlockingPool& pool) {
    auto work = [](std::stop_token token) { return token.stop_requested(); };
    Task<bool> waiting = offload(pool, work);
    const bool seen = co_await std::move(waiting);
    co_return seen;
}

Task<> done(BlockingPool& pool, std::function<void()> work) {
    Task<> waiting = offload(pool, std::move(work));
    co_await std::move(waiting);
}

Task<std::unique_ptr<int>> made(BlockingPool& pool) {
    auto work = [] { return std::make_unique<int>(9); };
    Task<std::unique_ptr<int>> waiting = offload(pool, work);
    std::unique_ptr<int> result = co_await std::move(waiting);
    co_return result;
}

/// How many still hold what the work held, seen by the one who waited for the work.
Task<long> holdersAfterwards(BlockingPool& pool, std::weak_ptr<int> watched, std::function<void()> work) {
    Task<> waiting = offload(pool, std::move(work));
    co_await std::move(waiting);
    co_return watched.use_count();
}

Task<std::optional<int>> lookUp(BlockingPool& pool, std::function<int()> work, std::stop_token abandon) {
    Task<std::optional<int>> waiting = offloadOrAbandon(pool, std::move(work), std::move(abandon));
    std::optional<int> result = co_await std::move(waiting);
    co_return result;
}

Task<bool> lookUpNothing(BlockingPool& pool, std::function<void()> work, std::stop_token abandon) {
    auto waiting = offloadOrAbandon(pool, std::move(work), std::move(abandon));
    const auto result = co_await std::move(waiting);
    co_return result.has_value();
}

class OffloadedWork : public testing::Test {
protected:
    ManualExecutor executor;
    ManualPool pool;
};

TEST_F(OffloadedWork, isWaitedForAndGivesItsResult) {
    const TaskHandle<int> handle = spawn(executor, computed(pool, [] { return 5; }));
    executor.runUntilIdle();
    EXPECT_EQ(pool.waiting(), 1u);
    EXPECT_FALSE(handle.done());
    pool.finish();
    EXPECT_FALSE(handle.done()) << "the pool's thread resumed the task itself";
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), 5);
}

TEST_F(OffloadedWork, isNotStartedBeforeTheTaskIsAwaited) {
    const Task<int> never = computed(pool, [] { return 5; });
    EXPECT_EQ(pool.waiting(), 0u);
}

TEST_F(OffloadedWork, mayGiveNothing) {
    bool ran = false;
    const TaskHandle<> handle = spawn(executor, done(pool, [&ran] { ran = true; }));
    executor.runUntilIdle();
    pool.finish();
    executor.runUntilIdle();
    EXPECT_TRUE(handle.done());
    EXPECT_TRUE(ran);
}

TEST_F(OffloadedWork, mayGiveAMoveOnlyResult) {
    const TaskHandle<std::unique_ptr<int>> handle = spawn(executor, made(pool));
    executor.runUntilIdle();
    pool.finish();
    executor.runUntilIdle();
    EXPECT_EQ(*handle.take(), 9);
}

TEST_F(OffloadedWork, throwsInTheTaskWhatItThrew) {
    const TaskHandle<int> handle =
        spawn(executor, computed(pool, []() -> int { throw std::runtime_error("no such host"); }));
    executor.runUntilIdle();
    pool.finish();
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_THROW((void)handle.take(), std::runtime_error);
}

TEST_F(OffloadedWork, isGivenTheStopTokenOfTheTask) {
    const TaskHandle<bool> cancelled = spawn(executor, tokenSeen(pool));
    const TaskHandle<bool> other = spawn(executor, tokenSeen(pool));
    executor.runUntilIdle();
    cancelled.cancel();
    pool.finish(0);
    pool.finish(0);
    executor.runUntilIdle();
    EXPECT_TRUE(cancelled.take());
    EXPECT_FALSE(other.take());
}

TEST_F(OffloadedWork, isWaitedForAlsoWhenTheTaskIsCancelled) {
    const TaskHandle<int> handle = spawn(executor, computed(pool, [] { return 5; }));
    executor.runUntilIdle();
    handle.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(handle.done());
    pool.finish();
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 5);
}

TEST_F(OffloadedWork, letsGoOfWhatItHeldBeforeTheTaskGoesOn) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    const TaskHandle<long> handle =
        spawn(executor, holdersAfterwards(pool, watched, [kept = std::move(held)] { ++*kept; }));
    executor.runUntilIdle();
    EXPECT_EQ(watched.use_count(), 1);
    pool.finish();
    EXPECT_EQ(watched.use_count(), 0);
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 0);
}

TEST_F(OffloadedWork, thatThrowsLetsGoOfWhatItHeldBeforeTheTaskGoesOn) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    const TaskHandle<long> handle = spawn(executor,
        holdersAfterwards(pool, watched, [kept = std::move(held)] { throw std::runtime_error("broken"); }));
    executor.runUntilIdle();
    pool.finish();
    EXPECT_EQ(watched.use_count(), 0);
    executor.runUntilIdle();
    EXPECT_THROW((void)handle.take(), std::runtime_error);
}

using AbandonableWork = OffloadedWork;

TEST_F(AbandonableWork, givesItsResultWhenNobodyAbandonsIt) {
    std::stop_source abandon;
    const TaskHandle<std::optional<int>> handle =
        spawn(executor, lookUp(pool, [] { return 5; }, abandon.get_token()));
    executor.runUntilIdle();
    pool.finish();
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 5);
}

TEST_F(AbandonableWork, throwsInTheTaskWhatItThrew) {
    std::stop_source abandon;
    const TaskHandle<std::optional<int>> handle = spawn(
        executor, lookUp(pool, []() -> int { throw std::runtime_error("no such host"); }, abandon.get_token()));
    executor.runUntilIdle();
    pool.finish();
    executor.runUntilIdle();
    EXPECT_THROW((void)handle.take(), std::runtime_error);
}

TEST_F(AbandonableWork, isWaitedForWhenTheTaskIsOnlyCancelled) {
    std::stop_source abandon;
    const TaskHandle<std::optional<int>> handle =
        spawn(executor, lookUp(pool, [] { return 5; }, abandon.get_token()));
    executor.runUntilIdle();
    handle.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(handle.done());
    pool.finish();
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 5);
}

TEST_F(AbandonableWork, isNoLongerWaitedForOnceItIsAbandoned) {
    std::stop_source abandon;
    const TaskHandle<std::optional<int>> handle =
        spawn(executor, lookUp(pool, [] { return 5; }, abandon.get_token()));
    executor.runUntilIdle();
    abandon.request_stop();
    EXPECT_FALSE(handle.done()) << "the stop callback resumed the task itself";
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), std::nullopt);
    EXPECT_EQ(pool.waiting(), 1u);
    pool.finish();
    EXPECT_EQ(executor.waiting(), 0u);
}

TEST_F(AbandonableWork, thatEndsLateTouchesNothingThatIsGone) {
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    {
        // All that the late work must not touch; the address sanitizer watches.
        auto shortLived = std::make_unique<ManualExecutor>();
        auto abandon = std::make_unique<std::stop_source>();
        TaskHandle<std::optional<int>> handle =
            spawn(*shortLived, lookUp(pool, [kept = std::move(held)] { return ++*kept; }, abandon->get_token()));
        shortLived->runUntilIdle();
        abandon->request_stop();
        shortLived->runUntilIdle();
        EXPECT_EQ(handle.take(), std::nullopt);
    }
    EXPECT_EQ(watched.use_count(), 1);
    pool.finish();
    EXPECT_EQ(watched.use_count(), 0);
}

TEST_F(AbandonableWork, thatThrowsLateIsDroppedLikeAnyLateResult) {
    std::stop_source abandon;
    const TaskHandle<std::optional<int>> handle = spawn(
        executor, lookUp(pool, []() -> int { throw std::runtime_error("no such host"); }, abandon.get_token()));
    executor.runUntilIdle();
    abandon.request_stop();
    executor.runUntilIdle();
    EXPECT_NO_THROW(pool.finish());
    EXPECT_EQ(executor.waiting(), 0u);
    EXPECT_EQ(handle.take(), std::nullopt);
}

TEST_F(AbandonableWork, abandonedAfterItsEndKeepsItsResult) {
    std::stop_source abandon;
    const TaskHandle<std::optional<int>> handle =
        spawn(executor, lookUp(pool, [] { return 5; }, abandon.get_token()));
    executor.runUntilIdle();
    pool.finish();
    abandon.request_stop();
    EXPECT_EQ(executor.waiting(), 1u);
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 5);
}

TEST_F(AbandonableWork, abandonedBeforehandIsNotWaitedFor) {
    std::stop_source abandon;
    abandon.request_stop();
    const TaskHandle<std::optional<int>> handle =
        spawn(executor, lookUp(pool, [] { return 5; }, abandon.get_token()));
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), std::nullopt);
}

TEST_F(AbandonableWork, withoutResultStillTellsWhetherItWasAbandoned) {
    std::stop_source abandon;
    const TaskHandle<bool> finished = spawn(executor, lookUpNothing(pool, [] {}, abandon.get_token()));
    executor.runUntilIdle();
    pool.finish();
    executor.runUntilIdle();
    const TaskHandle<bool> abandoned = spawn(executor, lookUpNothing(pool, [] {}, abandon.get_token()));
    executor.runUntilIdle();
    abandon.request_stop();
    executor.runUntilIdle();
    EXPECT_TRUE(finished.take());
    EXPECT_FALSE(abandoned.take());
}

TEST_F(AbandonableWork, droppedByItsPoolIsACancellation) {
    std::stop_source abandon;
    const TaskHandle<std::optional<int>> handle =
        spawn(executor, lookUp(pool, [] { return 5; }, abandon.get_token()));
    executor.runUntilIdle();
    pool.dropAll();
    abandon.request_stop();
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_THROW((void)handle.take(), CancellationError);
}

TEST_F(AbandonableWork, abandonedBeforeItsPoolDropsItIsOnlyAbandoned) {
    std::stop_source abandon;
    const TaskHandle<std::optional<int>> handle =
        spawn(executor, lookUp(pool, [] { return 5; }, abandon.get_token()));
    executor.runUntilIdle();
    abandon.request_stop();
    pool.dropAll();
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), std::nullopt);
    EXPECT_EQ(executor.waiting(), 0u);
}

TEST_F(OffloadedWork, droppedByItsPoolEndsTheWaitWithACancellationAndLetsGoOfWhatItHeld) {
    const auto held = std::make_shared<int>(0);
    const TaskHandle<int> handle = spawn(executor, computed(pool, [held] { return *held; }));
    executor.runUntilIdle();
    pool.dropAll();
    EXPECT_FALSE(handle.done()) << "the pool resumed the task itself";
    EXPECT_EQ(held.use_count(), 1);
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_THROW((void)handle.take(), CancellationError);
}

TEST_F(OffloadedWork, thatItsPoolCannotTakeThrowsThePoolsReasonOnce) {
    pool.refuses = true;
    const TaskHandle<int> handle = spawn(executor, computed(pool, [] { return 1; }));
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_THROW((void)handle.take(), std::system_error);
    EXPECT_EQ(executor.waiting(), 0u);
}

} // namespace
} // namespace kestrin
