#include "tasks/FifoGate.h"

#include "tasks/Sleep.h"
#include "tasks/Spawn.h"
#include "tasks/VirtualTimeTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrin {
namespace {

using std::chrono::seconds;
using Log = std::vector<std::string>;

Task<> operation(FifoGate& gate, Clock& clock, std::string name, Log& log) {
    const std::optional<FifoGate::Turn> turn = co_await gate.enter();
    log.push_back(name + " enters");
    co_await sleepUntil(clock, clock.now() + seconds(1));
    log.push_back(name + " wakes");
    co_await sleepUntil(clock, clock.now() + seconds(1));
    log.push_back(name + " leaves");
}

Task<> failingInside(FifoGate& gate, Clock& clock) {
    const std::optional<FifoGate::Turn> turn = co_await gate.enter();
    co_await sleepUntil(clock, clock.now() + seconds(1));
    throw std::runtime_error("inside");
}

Task<> enterAndLeave(FifoGate& gate, std::string name, Log& log) {
    const std::optional<FifoGate::Turn> turn = co_await gate.enter();
    log.push_back(name);
}

Task<bool> enters(FifoGate& gate) {
    const std::optional<FifoGate::Turn> turn = co_await gate.enter();
    co_return turn.has_value();
}

Task<Executor*> executorInside(FifoGate& gate) {
    const std::optional<FifoGate::Turn> turn = co_await gate.enter();
    const TaskContext context = co_await currentContext();
    co_return context.executor;
}

class AGate : public VirtualTimeTest {
protected:
    FifoGate gate;
    Log log;
};

TEST_F(AGate, thatIsFreeLetsIn) {
    const TaskHandle<> handle = spawn(executor, enterAndLeave(gate, "only", log));
    EXPECT_EQ(executor.runUntilIdle(), 1u);
    EXPECT_TRUE(handle.done());
    EXPECT_EQ(log, Log{"only"});
}

TEST_F(AGate, keepsATurnAcrossSuspensions) {
    spawn(executor, operation(gate, clock, "a", log));
    spawn(executor, operation(gate, clock, "b", log));
    passSeconds(4);
    EXPECT_EQ(log, (Log{"a enters", "a wakes", "a leaves", "b enters", "b wakes", "b leaves"}));
}

TEST_F(AGate, letsInWhoCameFirst) {
    spawn(executor, operation(gate, clock, "holder", log));
    executor.runUntilIdle();
    log.clear();
    Log expected{"holder wakes", "holder leaves"};
    for (int number = 0; number < 10; ++number) {
        spawn(executor, enterAndLeave(gate, std::to_string(number), log));
        expected.push_back(std::to_string(number));
    }
    passSeconds(2);
    EXPECT_EQ(log, expected);
}

TEST_F(AGate, letsInAsManyAsItHasPlaces) {
    FifoGate wide(2);
    for (const char* name : {"first", "second", "third"})
        spawn(executor, operation(wide, clock, name, log));
    executor.runUntilIdle();
    EXPECT_EQ(log, (Log{"first enters", "second enters"}));
    passSeconds(2);
    EXPECT_EQ(log, (Log{"first enters", "second enters", "first wakes", "second wakes", "first leaves",
                       "second leaves", "third enters"}));
    passSeconds(2);
}

TEST_F(AGate, letsNoNewcomerSlipInBetweenALeaveAndTheNextEntry) {
    spawn(executor, operation(gate, clock, "a", log));
    executor.runUntilIdle();
    spawn(executor, enterAndLeave(gate, "b", log));
    passSeconds(1);
    clock.advance(seconds(1));
    // The holder's last step is posted already; the newcomer starts right behind it, before "b" is resumed.
    spawn(executor, enterAndLeave(gate, "newcomer", log));
    executor.runUntilIdle();
    EXPECT_EQ(log, (Log{"a enters", "a wakes", "a leaves", "b", "newcomer"}));
}

TEST_F(AGate, isLeftByAnException) {
    const TaskHandle<> failing = spawn(executor, failingInside(gate, clock));
    spawn(executor, enterAndLeave(gate, "next", log));
    executor.runUntilIdle();
    EXPECT_TRUE(log.empty());
    passSeconds(1);
    EXPECT_THROW(failing.take(), std::runtime_error);
    EXPECT_EQ(log, Log{"next"});
    const TaskHandle<> later = spawn(executor, enterAndLeave(gate, "later", log));
    executor.runUntilIdle();
    EXPECT_TRUE(later.done());
}

TEST_F(AGate, letsACancelledWaiterGoAtOnceAndTheNextMoveUp) {
    spawn(executor, operation(gate, clock, "a", log));
    executor.runUntilIdle();
    const TaskHandle<bool> waiter = spawn(executor, enters(gate));
    spawn(executor, enterAndLeave(gate, "behind", log));
    executor.runUntilIdle();
    waiter.cancel();
    EXPECT_FALSE(waiter.done()) << "the stop callback resumed the task itself";
    executor.runUntilIdle();
    ASSERT_TRUE(waiter.done());
    EXPECT_FALSE(waiter.take());
    passSeconds(2);
    EXPECT_EQ(log, (Log{"a enters", "a wakes", "a leaves", "behind"}));
}

TEST_F(AGate, letsNoCancelledTaskInEvenWhenItIsFree) {
    const TaskHandle<bool> task = spawn(executor, enters(gate));
    task.cancel();
    executor.runUntilIdle();
    EXPECT_FALSE(task.take());
    const TaskHandle<bool> next = spawn(executor, enters(gate));
    executor.runUntilIdle();
    EXPECT_TRUE(next.take());
}

TEST_F(AGate, keepsATurnThatWasGivenBeforeTheCancellation) {
    spawn(executor, operation(gate, clock, "a", log));
    executor.runUntilIdle();
    const TaskHandle<bool> waiter = spawn(executor, enters(gate));
    passSeconds(1);
    clock.advance(seconds(1));
    executor.runOne();
    waiter.cancel();
    executor.runUntilIdle();
    EXPECT_TRUE(waiter.take());
    spawn(executor, enterAndLeave(gate, "later", log));
    executor.runUntilIdle();
    EXPECT_EQ(log.back(), "later");
}

TEST_F(AGate, resumesAWaiterOnItsOwnExecutor) {
    ManualExecutor other;
    spawn(executor, operation(gate, clock, "a", log));
    executor.runUntilIdle();
    const TaskHandle<Executor*> waiter = spawn(other, executorInside(gate));
    other.runUntilIdle();
    passSeconds(2);
    EXPECT_FALSE(waiter.done());
    EXPECT_EQ(other.runUntilIdle(), 1u);
    EXPECT_EQ(waiter.take(), &other);
}

TEST_F(AGate, handsOnATurnThatIsMoved) {
    std::optional<FifoGate::Turn> kept;
    struct Keeping {
        static Task<> task(FifoGate& gate, std::optional<FifoGate::Turn>& kept) {
            std::optional<FifoGate::Turn> turn = co_await gate.enter();
            kept.emplace(std::move(*turn));
        }
    };
    spawn(executor, Keeping::task(gate, kept));
    executor.runUntilIdle();
    const TaskHandle<> waiter = spawn(executor, enterAndLeave(gate, "waiter", log));
    executor.runUntilIdle();
    EXPECT_FALSE(waiter.done());
    kept.reset();
    executor.runUntilIdle();
    EXPECT_TRUE(waiter.done());
}

TEST_F(AGate, mayBeDestroyedWhileTurnsAreHeldAndWaitedFor) {
    auto shortLived = std::make_unique<FifoGate>();
    const TaskHandle<> holder = spawn(executor, operation(*shortLived, clock, "a", log));
    const TaskHandle<> waiter = spawn(executor, operation(*shortLived, clock, "b", log));
    executor.runUntilIdle();
    shortLived.reset();
    passSeconds(4);
    EXPECT_TRUE(holder.done());
    EXPECT_TRUE(waiter.done());
    EXPECT_EQ(log.back(), "b leaves");
}

} // namespace
} // namespace kestrin
