#include "tasks/Concurrently.h"

#include "tasks/Sleep.h"
#include "tasks/VirtualTimeTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrin {
namespace {

using std::chrono::seconds;
using Numbers = std::vector<int>;

/// Gives its number after as many seconds, negative when it was cancelled.
Task<int> after(Clock& clock, int number) {
    const SleepResult result = co_await sleepUntil(clock, clock.now() + seconds(number));
    co_return result == SleepResult::Elapsed ? number : -number;
}

Task<int> failAfter(Clock& clock, int number, std::string message) {
    co_await sleepUntil(clock, clock.now() + seconds(number));
    throw std::runtime_error(message);
}

Task<std::unique_ptr<int>> boxed(int number) {
    co_return std::make_unique<int>(number);
}

Task<> noted(Clock& clock, int number, Numbers& ended) {
    co_await sleepUntil(clock, clock.now() + seconds(number));
    ended.push_back(number);
    if (number < 0) throw std::runtime_error("negative");
}

std::vector<Task<int>> afterEach(Clock& clock, const Numbers& numbers) {
    std::vector<Task<int>> tasks;
    for (const int number : numbers)
        tasks.push_back(after(clock, number));
    return tasks;
}

using WhenAll = VirtualTimeTest;

TEST_F(WhenAll, givesTheResultsInTheGivenOrder) {
    const TaskHandle<Numbers> handle = spawn(executor, whenAll(afterEach(clock, {3, 1, 2})));
    passSeconds(2);
    EXPECT_FALSE(handle.done());
    passSeconds(1);
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), (Numbers{3, 1, 2}));
}

TEST_F(WhenAll, ofNothingEndsAtOnce) {
    const TaskHandle<Numbers> handle = spawn(executor, whenAll(std::vector<Task<int>>()));
    executor.runUntilIdle();
    EXPECT_TRUE(handle.take().empty());
}

TEST_F(WhenAll, givesMoveOnlyResults) {
    std::vector<Task<std::unique_ptr<int>>> tasks;
    tasks.push_back(boxed(4));
    tasks.push_back(boxed(5));
    const TaskHandle<std::vector<std::unique_ptr<int>>> handle = spawn(executor, whenAll(std::move(tasks)));
    executor.runUntilIdle();
    const std::vector<std::unique_ptr<int>> results = handle.take();
    EXPECT_EQ(*results.at(0), 4);
    EXPECT_EQ(*results.at(1), 5);
}

TEST_F(WhenAll, waitsForAllAlsoWhenOneThrows) {
    std::vector<Task<int>> tasks;
    tasks.push_back(failAfter(clock, 1, "broken"));
    tasks.push_back(after(clock, 5));
    const TaskHandle<Numbers> handle = spawn(executor, whenAll(std::move(tasks)));
    passSeconds(4);
    EXPECT_FALSE(handle.done());
    EXPECT_EQ(clock.timerCount(), 1u);
    passSeconds(1);
    ASSERT_TRUE(handle.done());
    EXPECT_THROW((void)handle.take(), std::runtime_error);
}

TEST_F(WhenAll, throwsWhatTheFirstInOrderThrewAndNotTheFirstInTime) {
    std::vector<Task<int>> tasks;
    tasks.push_back(after(clock, 1));
    tasks.push_back(failAfter(clock, 3, "first in order"));
    tasks.push_back(failAfter(clock, 2, "first in time"));
    const TaskHandle<Numbers> handle = spawn(executor, whenAll(std::move(tasks)));
    passSeconds(3);
    try {
        (void)handle.take();
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "first in order");
    }
}

TEST_F(WhenAll, waitsForTasksWithoutResultAlsoWhenOneThrows) {
    Numbers ended;
    std::vector<Task<>> tasks;
    tasks.push_back(noted(clock, -1, ended));
    tasks.push_back(noted(clock, 3, ended));
    const TaskHandle<> handle = spawn(executor, whenAll(std::move(tasks)));
    passSeconds(3);
    ASSERT_TRUE(handle.done());
    EXPECT_THROW(handle.take(), std::runtime_error);
    EXPECT_EQ(ended, (Numbers{-1, 3}));
}

TEST_F(WhenAll, cancelsEveryChildWhenTheParentIsCancelled) {
    const TaskHandle<Numbers> handle = spawn(executor, whenAll(afterEach(clock, {3, 5})));
    executor.runUntilIdle();
    handle.cancel();
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(handle.take(), (Numbers{-3, -5}));
    EXPECT_EQ(clock.timerCount(), 0u);
}

/// What a bounded map started and in what order, the most that ran at once.
struct Started {
    Numbers numbers;
    int running = 0;
    int most = 0;
};

Task<int> item(Clock& clock, int number, Started& started) {
    started.numbers.push_back(number);
    started.most = std::max(started.most, ++started.running);
    Task<int> waiting = after(clock, number);
    const int result = co_await std::move(waiting);
    --started.running;
    if (number == 13) throw std::runtime_error("unlucky");
    co_return result;
}

class BoundedMap : public VirtualTimeTest {
protected:
    TaskHandle<Numbers> map(Numbers numbers, std::size_t limit) {
        return spawn(executor,
            boundedMap(std::move(numbers), limit, [this](int number) { return item(clock, number, started); }));
    }

    Started started;
};

TEST_F(BoundedMap, runsAtMostTheLimitAtOnce) {
    const TaskHandle<Numbers> handle = map({2, 2, 2, 2, 2}, 2);
    passSeconds(6);
    EXPECT_EQ(handle.take().size(), 5u);
    EXPECT_EQ(started.most, 2);
}

TEST_F(BoundedMap, startsInOrderTheNextWhenOneHasEnded) {
    const TaskHandle<Numbers> handle = map({5, 1, 2, 3}, 2);
    executor.runUntilIdle();
    EXPECT_EQ(started.numbers, (Numbers{5, 1}));
    passSeconds(1);
    EXPECT_EQ(started.numbers, (Numbers{5, 1, 2}));
    passSeconds(2);
    EXPECT_EQ(started.numbers, (Numbers{5, 1, 2, 3}));
    passSeconds(3);
    EXPECT_TRUE(handle.done());
}

TEST_F(BoundedMap, givesTheResultsInTheOrderInWhichTheyCame) {
    const TaskHandle<Numbers> handle = map({5, 1, 2, 3}, 2);
    passSeconds(6);
    EXPECT_EQ(handle.take(), (Numbers{1, 2, 5, 3}));
}

TEST_F(BoundedMap, withALimitAboveTheCountStartsAll) {
    const TaskHandle<Numbers> handle = map({3, 2, 1}, 10);
    executor.runUntilIdle();
    EXPECT_EQ(started.numbers, (Numbers{3, 2, 1}));
    passSeconds(3);
    EXPECT_EQ(handle.take(), (Numbers{1, 2, 3}));
}

TEST_F(BoundedMap, startsNothingMoreOnceItIsCancelledAndDropsWhatComesLate) {
    const TaskHandle<Numbers> handle = map({1, 5, 5, 5}, 2);
    passSeconds(1);
    EXPECT_EQ(started.numbers, (Numbers{1, 5, 5}));
    handle.cancel();
    executor.runUntilIdle();
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(started.numbers, (Numbers{1, 5, 5}));
    EXPECT_EQ(started.running, 0);
    EXPECT_EQ(handle.take(), Numbers{1});
    EXPECT_EQ(clock.timerCount(), 0u);
}

TEST_F(BoundedMap, dropsAResultThatWasReadyWhenTheCancellationCame) {
    const TaskHandle<Numbers> handle = map({1, 1}, 1);
    executor.runUntilIdle();
    clock.advance(seconds(1));
    handle.cancel();
    executor.runUntilIdle();
    EXPECT_TRUE(handle.take().empty());
    EXPECT_EQ(started.numbers, Numbers{1});
}

TEST_F(BoundedMap, startsNothingWhenItIsCancelledBeforeItsFirstItemRan) {
    const TaskHandle<Numbers> handle = map({1, 2, 3}, 2);
    executor.runOne();
    handle.cancel();
    executor.runUntilIdle();
    EXPECT_TRUE(handle.take().empty());
    EXPECT_TRUE(started.numbers.empty());
}

TEST_F(BoundedMap, alreadyCancelledGivesNothing) {
    const TaskHandle<Numbers> handle = map({1, 2, 3}, 2);
    handle.cancel();
    EXPECT_EQ(executor.runUntilIdle(), 1u);
    EXPECT_TRUE(handle.take().empty());
    EXPECT_TRUE(started.numbers.empty());
}

TEST_F(BoundedMap, withALimitOfZeroGivesNothing) {
    const TaskHandle<Numbers> handle = map({1, 2, 3}, 0);
    EXPECT_EQ(executor.runUntilIdle(), 1u);
    EXPECT_TRUE(handle.take().empty());
    EXPECT_TRUE(started.numbers.empty());
}

TEST_F(BoundedMap, ofAnEmptyListGivesNothing) {
    const TaskHandle<Numbers> handle = map({}, 2);
    EXPECT_EQ(executor.runUntilIdle(), 1u);
    EXPECT_TRUE(handle.take().empty());
}

TEST_F(BoundedMap, waitsForWhatRunsAndThrowsWhenAnItemThrew) {
    const TaskHandle<Numbers> handle = map({13, 20}, 2);
    passSeconds(19);
    EXPECT_FALSE(handle.done());
    passSeconds(1);
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(started.running, 0);
    EXPECT_THROW((void)handle.take(), std::runtime_error);
}

TEST_F(BoundedMap, runsBesideAnotherWithALimitOfItsOwn) {
    const TaskHandle<Numbers> websites = map({2, 2, 2}, 2);
    const TaskHandle<Numbers> services = map({2, 2, 2}, 2);
    executor.runUntilIdle();
    EXPECT_EQ(started.running, 4);
    passSeconds(4);
    EXPECT_EQ(websites.take().size(), 3u);
    EXPECT_EQ(services.take().size(), 3u);
    EXPECT_EQ(started.most, 4);
}

Task<Executor*> executorThere() {
    const TaskContext context = co_await currentContext();
    co_return context.executor;
}

/// The executors of a task on another executor, and of the one who ran it there, before and after.
Task<std::vector<Executor*>> thereAndBack(Executor& other) {
    std::vector<Executor*> seen;
    Task<Executor*> here = executorThere();
    seen.push_back(co_await std::move(here));
    Task<Executor*> there = runOn(other, executorThere());
    seen.push_back(co_await std::move(there));
    Task<Executor*> back = executorThere();
    seen.push_back(co_await std::move(back));
    co_return seen;
}

using RunningElsewhere = VirtualTimeTest;

TEST_F(RunningElsewhere, runsThereAndComesBackToItsOwnExecutor) {
    ManualExecutor other;
    const TaskHandle<std::vector<Executor*>> handle = spawn(executor, thereAndBack(other));
    executor.runUntilIdle();
    EXPECT_EQ(other.waiting(), 1u);
    other.runUntilIdle();
    EXPECT_FALSE(handle.done());
    EXPECT_EQ(executor.waiting(), 1u);
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), (std::vector<Executor*>{&executor, &other, &executor}));
}

TEST_F(RunningElsewhere, isCancelledAlongWithTheOneWhoWaits) {
    ManualExecutor other;
    const TaskHandle<int> handle = spawn(executor, runOn(other, after(clock, 5)));
    executor.runUntilIdle();
    other.runUntilIdle();
    handle.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(handle.done()) << "a cancelled task still waits for the one elsewhere";
    other.runUntilIdle();
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), -5);
}

TEST_F(RunningElsewhere, throwsHereWhatWasThrownThere) {
    ManualExecutor other;
    Numbers ended;
    const TaskHandle<> handle = spawn(executor, runOn(other, noted(clock, -1, ended)));
    executor.runUntilIdle();
    other.runUntilIdle();
    clock.advance(seconds(1));
    other.runUntilIdle();
    executor.runUntilIdle();
    EXPECT_THROW(handle.take(), std::runtime_error);
}

TEST_F(RunningElsewhere, givesAMoveOnlyResult) {
    ManualExecutor other;
    const TaskHandle<std::unique_ptr<int>> handle = spawn(executor, runOn(other, boxed(3)));
    executor.runUntilIdle();
    other.runUntilIdle();
    executor.runUntilIdle();
    EXPECT_EQ(*handle.take(), 3);
}

} // namespace
} // namespace kestrin
