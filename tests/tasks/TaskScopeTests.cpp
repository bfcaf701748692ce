#include "tasks/TaskScope.h"

#include "fakes/ManualPool.h"
#include "tasks/Concurrently.h"
#include "tasks/Offload.h"
#include "tasks/Sleep.h"
#include "tasks/VirtualTimeTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace kestrin {
namespace {

using std::chrono::seconds;

Task<bool> sleepSeconds(Clock& clock, int count) {
    const Instant when = clock.now() + seconds(count);
    const SleepResult slept = co_await sleepUntil(clock, when);
    co_return slept == SleepResult::Elapsed;
}

Task<> fail(Clock& clock) {
    Task<bool> sleep = sleepSeconds(clock, 1);
    co_await std::move(sleep);
    throw std::runtime_error("failed");
}

Task<> startAnother(TaskScope& scope, Executor& executor, Clock& clock) {
    Task<bool> sleep = sleepSeconds(clock, 1);
    co_await std::move(sleep);
    scope.spawn(executor, sleepSeconds(clock, 1));
}

Task<int> compute(BlockingPool& pool) {
    auto work = [] { return 1; };
    Task<int> waiting = offload(pool, work);
    co_return co_await std::move(waiting);
}

class AScope : public VirtualTimeTest {
protected:
    ManualPool pool;
    TaskScope scope;
};

TEST_F(AScope, thatIsEmptyIsJoinedAtOnce) {
    const TaskHandle<> join = spawn(executor, scope.join());
    executor.runUntilIdle();
    EXPECT_TRUE(join.done());
}

TEST_F(AScope, isJoinedWhenItsLastTaskHasEnded) {
    scope.spawn(executor, sleepSeconds(clock, 1));
    scope.spawn(executor, sleepSeconds(clock, 3));
    const TaskHandle<> join = spawn(executor, scope.join());
    EXPECT_EQ(scope.size(), 2u);
    passSeconds(2);
    EXPECT_EQ(scope.size(), 1u);
    EXPECT_FALSE(join.done());
    passSeconds(1);
    EXPECT_EQ(scope.size(), 0u);
    EXPECT_TRUE(join.done());
}

TEST_F(AScope, cancelsAllItsTasksAndThoseThatStartLater) {
    const TaskHandle<bool> early = scope.spawn(executor, sleepSeconds(clock, 1));
    executor.runUntilIdle();
    scope.cancel();
    const TaskHandle<bool> late = scope.spawn(executor, sleepSeconds(clock, 1));
    const TaskHandle<> join = spawn(executor, scope.join());
    executor.runUntilIdle();
    EXPECT_TRUE(scope.isCancelled());
    EXPECT_FALSE(early.take());
    EXPECT_FALSE(late.take());
    EXPECT_TRUE(join.done());
    EXPECT_EQ(clock.timerCount(), 0u);
}

TEST_F(AScope, cancelsOneTaskAloneThroughItsHandle) {
    const TaskHandle<bool> one = scope.spawn(executor, sleepSeconds(clock, 1));
    const TaskHandle<bool> other = scope.spawn(executor, sleepSeconds(clock, 1));
    executor.runUntilIdle();
    one.cancel();
    passSeconds(1);
    EXPECT_FALSE(one.take());
    EXPECT_TRUE(other.take());
}

TEST_F(AScope, isLeftByATaskThatFails) {
    const TaskHandle<> failing = scope.spawn(executor, fail(clock));
    passSeconds(1);
    EXPECT_EQ(scope.size(), 0u);
    EXPECT_THROW(failing.take(), std::runtime_error);
}

TEST_F(AScope, waitsForATaskThatTheLastOneStarted) {
    scope.spawn(executor, startAnother(scope, executor, clock));
    const TaskHandle<> join = spawn(executor, scope.join());
    passSeconds(1);
    EXPECT_FALSE(join.done());
    passSeconds(1);
    EXPECT_TRUE(join.done());
}

TEST_F(AScope, isJoinedToTheEndByACancelledJoiner) {
    scope.spawn(executor, sleepSeconds(clock, 1));
    const TaskHandle<> join = spawn(executor, scope.join());
    join.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(join.done());
    passSeconds(1);
    EXPECT_TRUE(join.done());
}

TEST_F(AScope, cancelsItsTasksWhenItIsDestroyedAndLetsThemEnd) {
    auto ending = std::make_unique<TaskScope>();
    const TaskHandle<bool> task = ending->spawn(executor, sleepSeconds(clock, 1));
    executor.runUntilIdle();
    ending.reset();
    executor.runUntilIdle();
    EXPECT_FALSE(task.take());
}

TEST_F(AScope, insideAnotherIsCancelledAlongWithItAndCountsInIt) {
    const TaskScope inner = scope.inner();
    TaskScope innermost = inner.inner();
    const TaskHandle<bool> task = innermost.spawn(executor, sleepSeconds(clock, 1));
    const TaskHandle<> join = spawn(executor, scope.join());
    executor.runUntilIdle();
    EXPECT_EQ(scope.size(), 1u);
    EXPECT_EQ(inner.size(), 1u);
    scope.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(task.take());
    EXPECT_TRUE(join.done());
}

TEST_F(AScope, insideAnotherIsCancelledAlone) {
    TaskScope inner = scope.inner();
    const TaskHandle<bool> outside = scope.spawn(executor, sleepSeconds(clock, 1));
    const TaskHandle<bool> inside = inner.spawn(executor, sleepSeconds(clock, 1));
    executor.runUntilIdle();
    inner.cancel();
    passSeconds(1);
    EXPECT_FALSE(inside.take());
    EXPECT_TRUE(outside.take());
}

TEST_F(AScope, endsThoughThePoolOfItsTasksEnded) {
    const TaskHandle<int> task = scope.spawn(executor, compute(pool));
    const TaskHandle<> join = spawn(executor, scope.join());
    executor.runUntilIdle();
    scope.cancel();
    pool.dropAll();
    executor.runUntilIdle();
    EXPECT_TRUE(join.done());
    EXPECT_THROW((void)task.take(), CancellationError);
}

// Operations that must not be interrupted halfway.

Task<bool> operate(TaskScope& scope, Executor& executor, Task<bool> operation) {
    Task<bool> running = runToCompletion(scope, executor, std::move(operation));
    co_return co_await std::move(running);
}

TEST_F(AScope, runsAnOperationToItsEndThoughItsCallerIsCancelled) {
    ManualExecutor owner;
    const TaskHandle<bool> caller = spawn(executor, operate(scope, owner, sleepSeconds(clock, 1)));
    executor.runUntilIdle();
    owner.runUntilIdle();
    caller.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(caller.done());
    clock.advance(seconds(1));
    owner.runUntilIdle();
    executor.runUntilIdle();
    EXPECT_TRUE(caller.take()) << "the operation saw its caller's cancellation";
}

TEST_F(AScope, interruptsSuchAnOperationWhenItIsCancelledItself) {
    const TaskHandle<bool> caller = spawn(executor, operate(scope, executor, sleepSeconds(clock, 1)));
    executor.runUntilIdle();
    scope.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(caller.take());
}

} // namespace
} // namespace kestrin
