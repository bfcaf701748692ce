#include "tasks/Task.h"

#include "fakes/ManualExecutor.h"
#include "tasks/Spawn.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace kestrin {
namespace {

Task<int> countingAnswer(int& starts) {
    ++starts;
    co_return 42;
}

Task<int> answerPlusOne(int& starts) {
    Task<int> inner = countingAnswer(starts);
    const int answer = co_await std::move(inner);
    co_return answer + 1;
}

Task<> holding([[maybe_unused]] std::shared_ptr<int> held, int& starts) {
    ++starts;
    co_return;
}

Task<int> nested(int levels) {
    if (levels == 0) co_return 1;
    Task<int> inner = nested(levels - 1);
    const int below = co_await std::move(inner);
    co_return below + 1;
}

Task<int> failing(int levels) {
    if (levels == 0) throw std::runtime_error("deep down");
    Task<int> inner = failing(levels - 1);
    co_return co_await std::move(inner);
}

Task<std::string> recovering(int levels) {
    try {
        Task<int> inner = failing(levels);
        co_await std::move(inner);
    } catch (const std::runtime_error& error) {
        co_return error.what();
    }
    co_return "nothing was thrown";
}

Task<std::unique_ptr<int>> moveOnly(int levels) {
    if (levels == 0) co_return std::make_unique<int>(7);
    Task<std::unique_ptr<int>> inner = moveOnly(levels - 1);
    std::unique_ptr<int> result = co_await std::move(inner);
    co_return result;
}

Task<TaskContext> contextOf(int levels) {
    if (levels == 0) co_return co_await currentContext();
    Task<TaskContext> inner = contextOf(levels - 1);
    TaskContext context = co_await std::move(inner);
    co_return context;
}

Task<long> sumOfMany(int count) {
    long sum = 0;
    int starts = 0;
    for (int index = 0; index < count; ++index) {
        Task<int> next = countingAnswer(starts);
        sum += co_await std::move(next);
    }
    co_return sum;
}

TEST(ATask, runsNothingUntilItIsStarted) {
    int starts = 0;
    {
        Task<int> task = answerPlusOne(starts);
        EXPECT_EQ(starts, 0);
    }
    EXPECT_EQ(starts, 0);
}

TEST(ATask, runsOnceWhenItIsStarted) {
    ManualExecutor executor;
    int starts = 0;
    const TaskHandle<int> handle = spawn(executor, answerPlusOne(starts));
    executor.runUntilIdle();
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(handle.take(), 43);
}

TEST(ATask, letsGoOfItsArgumentsWhenItIsDestroyedUnstarted) {
    const auto held = std::make_shared<int>(1);
    int starts = 0;
    {
        Task<> task = holding(held, starts);
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(starts, 0);
}

TEST(ATask, thatIsAssignedToDestroysWhatItHeld) {
    const auto first = std::make_shared<int>(1);
    const auto second = std::make_shared<int>(2);
    int starts = 0;
    Task<> task = holding(first, starts);
    task = holding(second, starts);
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(second.use_count(), 2);
}

TEST(ATask, leavesNothingBehindWhenItIsMovedAway) {
    ManualExecutor executor;
    const auto held = std::make_shared<int>(1);
    int starts = 0;
    Task<> task = holding(held, starts);
    {
        Task<> moved = std::move(task);
        const TaskHandle<> handle = spawn(executor, std::move(moved));
        executor.runUntilIdle();
        EXPECT_TRUE(handle.done());
    }
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(starts, 1);
}

TEST(ATask, passesItsResultThroughSeveralLevels) {
    ManualExecutor executor;
    const TaskHandle<int> handle = spawn(executor, nested(20));
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 21);
}

TEST(ATask, passesAMoveOnlyResultThroughSeveralLevels) {
    ManualExecutor executor;
    const TaskHandle<std::unique_ptr<int>> handle = spawn(executor, moveOnly(5));
    executor.runUntilIdle();
    const std::unique_ptr<int> result = handle.take();
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(*result, 7);
}

TEST(ATask, passesAnExceptionThroughSeveralLevels) {
    ManualExecutor executor;
    const TaskHandle<int> handle = spawn(executor, failing(20));
    executor.runUntilIdle();
    EXPECT_TRUE(handle.done());
    EXPECT_THROW((void)handle.take(), std::runtime_error);
}

TEST(ATask, goesOnAfterCatchingWhatADeeperOneThrew) {
    ManualExecutor executor;
    const TaskHandle<std::string> handle = spawn(executor, recovering(3));
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), "deep down");
}

TEST(ATask, inheritsExecutorAndStopTokenFromItsAwaiter) {
    ManualExecutor executor;
    const TaskHandle<TaskContext> handle = spawn(executor, contextOf(4));
    executor.runUntilIdle();
    const TaskContext context = handle.take();
    EXPECT_EQ(context.executor, &executor);
    EXPECT_FALSE(context.isCancelled());
    handle.cancel();
    EXPECT_TRUE(context.isCancelled());
}

TEST(ATask, seesACancellationThatCameBeforeItsFirstStep) {
    ManualExecutor executor;
    const TaskHandle<TaskContext> handle = spawn(executor, contextOf(1));
    handle.cancel();
    executor.runUntilIdle();
    EXPECT_TRUE(handle.take().isCancelled());
}

TEST(ATask, awaitsAMillionTasksThatNeverSuspendOnAStackOfOrdinarySize) {
    ManualExecutor executor;
    const TaskHandle<long> handle = spawn(executor, sumOfMany(1'000'000));
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 42'000'000);
}

} // namespace
} // namespace kestrin
