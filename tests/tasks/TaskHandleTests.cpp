#include "tasks/TaskHandle.h"

#include "fakes/ManualExecutor.h"
#include "fakes/VirtualClock.h"
#include "tasks/Sleep.h"
#include "tasks/Spawn.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrin {
namespace {

using std::chrono::seconds;

Task<std::string> slowWord(Clock& clock) {
    co_await sleepUntil(clock, clock.now() + seconds(1));
    co_return "word";
}

Task<std::string> slowFailure(Clock& clock) {
    co_await sleepUntil(clock, clock.now() + seconds(1));
    throw std::runtime_error("no word");
}

Task<> slowNothing(Clock& clock, bool fails) {
    co_await sleepUntil(clock, clock.now() + seconds(1));
    if (fails) throw std::logic_error("not even nothing");
}

/// Gives what it awaited, or what that threw, and the executor on which it went on.
struct Answer {
    std::string text;
    Executor* executor = nullptr;
};

Task<Answer> awaitValue(TaskHandle<std::string> other) {
    const TaskContext context = co_await currentContext();
    std::string text;
    try {
        text = co_await other.value();
    } catch (const std::runtime_error& error) {
        text = error.what();
    }
    Answer answer;
    answer.text = text;
    answer.executor = context.executor;
    co_return answer;
}

Task<bool> awaitEnd(TaskHandle<std::string> other) {
    co_await other.join();
    const TaskContext context = co_await currentContext();
    co_return context.isCancelled();
}

Task<std::string> awaitNothing(TaskHandle<> other) {
    try {
        co_await other.value();
    } catch (const std::logic_error& error) {
        co_return error.what();
    }
    co_return "nothing";
}

class AHandle : public testing::Test {
protected:
    ManualExecutor executor;
    VirtualClock clock;
};

TEST_F(AHandle, madeByDefaultNamesNoTask) {
    const TaskHandle<> handle;
    EXPECT_FALSE(handle);
    EXPECT_EQ(handle, TaskHandle<>());
}

TEST_F(AHandle, copiedNamesTheSameTask) {
    TaskHandle<std::string> handle = spawn(executor, slowWord(clock));
    const TaskHandle<std::string> copy = handle;
    const TaskHandle<std::string> other = spawn(executor, slowWord(clock));
    EXPECT_TRUE(copy == handle);
    EXPECT_FALSE(other == handle);
    handle.reset();
    EXPECT_FALSE(handle);
    executor.runUntilIdle();
    copy.cancel();
    EXPECT_TRUE(copy.isCancelled());
    EXPECT_FALSE(other.isCancelled());
    executor.runUntilIdle();
    EXPECT_TRUE(copy.done());
    EXPECT_FALSE(other.done());
    clock.advance(seconds(1));
    executor.runUntilIdle();
    EXPECT_TRUE(other.done());
}

TEST_F(AHandle, givesTheValueToEveryoneWhoAwaitsIt) {
    const TaskHandle<std::string> handle = spawn(executor, slowWord(clock));
    std::vector<TaskHandle<Answer>> awaiters;
    for (int count = 0; count < 5; ++count)
        awaiters.push_back(spawn(executor, awaitValue(handle)));
    executor.runUntilIdle();
    for (const TaskHandle<Answer>& awaiter : awaiters)
        EXPECT_FALSE(awaiter.done());
    clock.advance(seconds(1));
    executor.runUntilIdle();
    for (const TaskHandle<Answer>& awaiter : awaiters) {
        ASSERT_TRUE(awaiter.done());
        EXPECT_EQ(awaiter.take().text, "word");
    }
}

TEST_F(AHandle, rethrowsForEveryoneWhoAwaitsTheValue) {
    const TaskHandle<std::string> handle = spawn(executor, slowFailure(clock));
    std::vector<TaskHandle<Answer>> awaiters;
    for (int count = 0; count < 5; ++count)
        awaiters.push_back(spawn(executor, awaitValue(handle)));
    executor.runUntilIdle();
    clock.advance(seconds(1));
    executor.runUntilIdle();
    awaiters.push_back(spawn(executor, awaitValue(handle)));
    executor.runUntilIdle();
    for (const TaskHandle<Answer>& awaiter : awaiters) {
        ASSERT_TRUE(awaiter.done());
        EXPECT_EQ(awaiter.take().text, "no word");
    }
}

TEST_F(AHandle, resumesEachAwaiterOnItsOwnExecutor) {
    ManualExecutor firstExecutor;
    ManualExecutor secondExecutor;
    const TaskHandle<std::string> handle = spawn(executor, slowWord(clock));
    const TaskHandle<Answer> first = spawn(firstExecutor, awaitValue(handle));
    const TaskHandle<Answer> second = spawn(secondExecutor, awaitValue(handle));
    executor.runUntilIdle();
    firstExecutor.runUntilIdle();
    secondExecutor.runUntilIdle();
    clock.advance(seconds(1));

    executor.runUntilIdle();
    EXPECT_TRUE(handle.done());
    EXPECT_FALSE(first.done());
    EXPECT_FALSE(second.done());
    EXPECT_EQ(firstExecutor.waiting(), 1u);
    EXPECT_EQ(secondExecutor.waiting(), 1u);

    secondExecutor.runUntilIdle();
    EXPECT_FALSE(first.done());
    ASSERT_TRUE(second.done());
    EXPECT_EQ(second.take().executor, &secondExecutor);
    firstExecutor.runUntilIdle();
    ASSERT_TRUE(first.done());
    EXPECT_EQ(first.take().executor, &firstExecutor);
}

TEST_F(AHandle, ofAnEndedTaskDoesNotMakeItsAwaiterWait) {
    const TaskHandle<std::string> handle = spawn(executor, slowWord(clock));
    executor.runUntilIdle();
    clock.advance(seconds(1));
    executor.runUntilIdle();
    const TaskHandle<Answer> awaiter = spawn(executor, awaitValue(handle));
    EXPECT_EQ(executor.runUntilIdle(), 1u);
    EXPECT_EQ(awaiter.take().text, "word");
}

TEST_F(AHandle, joinedByACancelledTaskIsWaitedForAllTheSame) {
    const TaskHandle<std::string> handle = spawn(executor, slowWord(clock));
    const TaskHandle<bool> joiner = spawn(executor, awaitEnd(handle));
    executor.runUntilIdle();
    joiner.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(joiner.done());
    EXPECT_FALSE(handle.isCancelled());
    clock.advance(seconds(1));
    executor.runUntilIdle();
    ASSERT_TRUE(joiner.done());
    EXPECT_TRUE(joiner.take());
}

TEST_F(AHandle, joinsAFailedTaskWithoutThrowing) {
    const TaskHandle<std::string> handle = spawn(executor, slowFailure(clock));
    const TaskHandle<bool> joiner = spawn(executor, awaitEnd(handle));
    executor.runUntilIdle();
    clock.advance(seconds(1));
    executor.runUntilIdle();
    EXPECT_FALSE(joiner.take());
}

TEST_F(AHandle, ofATaskWithoutResultCanBeAwaitedToo) {
    const TaskHandle<> good = spawn(executor, slowNothing(clock, false));
    const TaskHandle<> bad = spawn(executor, slowNothing(clock, true));
    const TaskHandle<std::string> ofGood = spawn(executor, awaitNothing(good));
    const TaskHandle<std::string> ofBad = spawn(executor, awaitNothing(bad));
    const TaskHandle<std::string> alsoOfBad = spawn(executor, awaitNothing(bad));
    executor.runUntilIdle();
    clock.advance(seconds(1));
    executor.runUntilIdle();
    EXPECT_EQ(ofGood.take(), "nothing");
    EXPECT_EQ(ofBad.take(), "not even nothing");
    EXPECT_EQ(alsoOfBad.take(), "not even nothing");
}

TEST_F(AHandle, cancelledAfterTheEndChangesNothing) {
    const TaskHandle<std::string> handle = spawn(executor, slowWord(clock));
    executor.runUntilIdle();
    clock.advance(seconds(1));
    executor.runUntilIdle();
    handle.cancel();
    EXPECT_EQ(executor.waiting(), 0u);
    EXPECT_EQ(handle.take(), "word");
}

} // namespace
} // namespace kestrin
