#include "tasks/ThreadPool.h"

#include "tasks/Offload.h"
#include "tasks/SerialExecutor.h"
#include "tasks/Sleep.h"
#include "tasks/Spawn.h"

#include "fakes/VirtualClock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace kestrin {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds generous = std::chrono::seconds(100);
constexpr milliseconds noPatience{0};

/// Counts events on any thread and waits for a number of them.
class Events {
public:
    void happen() {
        const std::lock_guard guard(mutex_);
        ++count_;
        happened_.notify_all();
    }
    [[nodiscard]] bool waitFor(int count) {
        std::unique_lock lock(mutex_);
        return happened_.wait_for(lock, generous, [&] { return count_ >= count; });
    }
    [[nodiscard]] int count() const {
        const std::lock_guard guard(mutex_);
        return count_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable happened_;
    int count_ = 0;
};

/// Happens when the thread that ran the work ends.
class EndOfThread {
public:
    ~EndOfThread() {
        if (events) events->happen();
    }
    std::shared_ptr<Events> events;
};
thread_local EndOfThread endOfThread;

/// A piece of work that is stuck until it is let go.
struct Stuck {
    std::promise<void> release;
    std::shared_future<void> released = release.get_future().share();
    std::shared_ptr<Events> entered = std::make_shared<Events>();
    std::shared_ptr<Events> left = std::make_shared<Events>();

    std::function<void()> work() const {
        return [until = released, in = entered, out = left] {
            in->happen();
            until.wait();
            out->happen();
        };
    }
};

template <class Condition> bool becomesTrue(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + generous;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

TEST(APool, runsWorkOnAThreadOfItsOwn) {
    ThreadPool pool(2);
    std::promise<std::thread::id> thread;
    pool.run([&thread] { thread.set_value(std::this_thread::get_id()); });
    EXPECT_NE(thread.get_future().get(), std::this_thread::get_id());
    EXPECT_TRUE(pool.shutDown(generous));
}

TEST(APool, runsAsManyPiecesAtOnceAsItMayHaveThreads) {
    ThreadPool pool(3);
    Stuck stuck;
    for (int piece = 0; piece < 3; ++piece)
        pool.run(stuck.work());
    EXPECT_TRUE(stuck.entered->waitFor(3));
    EXPECT_EQ(pool.busyThreads(), 3u);
    stuck.release.set_value();
    EXPECT_TRUE(pool.shutDown(generous));
    EXPECT_EQ(pool.busyThreads(), 0u);
}

TEST(APool, letsWorkBeyondItsLimitWaitInOrder) {
    ThreadPool pool(1);
    Stuck stuck;
    Events ended;
    std::vector<int> order;
    pool.run(stuck.work());
    EXPECT_TRUE(stuck.entered->waitFor(1));
    for (int piece = 0; piece < 10; ++piece)
        pool.run([&order, &ended, piece] {
            order.push_back(piece);
            ended.happen();
        });
    EXPECT_EQ(ended.count(), 0);
    EXPECT_EQ(pool.busyThreads(), 1u);
    stuck.release.set_value();
    EXPECT_TRUE(ended.waitFor(10));
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_TRUE(pool.shutDown(generous));
}

TEST(APool, givesABlockedPieceNoHoldOverTheOthers) {
    ThreadPool pool(2);
    Stuck stuck;
    pool.run(stuck.work());
    Events ended;
    for (int piece = 0; piece < 50; ++piece)
        pool.run([&ended] { ended.happen(); });
    EXPECT_TRUE(ended.waitFor(50));
    stuck.release.set_value();
    EXPECT_TRUE(pool.shutDown(generous));
}

TEST(APool, keepsNoThreadAfterAnIdleTime) {
    ThreadPool pool(3, milliseconds(1));
    const auto ends = std::make_shared<Events>();
    Stuck stuck;
    for (int piece = 0; piece < 3; ++piece)
        pool.run([ends, work = stuck.work()] {
            endOfThread.events = ends;
            work();
        });
    EXPECT_TRUE(stuck.entered->waitFor(3));
    EXPECT_EQ(ends->count(), 0);
    stuck.release.set_value();
    EXPECT_TRUE(ends->waitFor(3));
    EXPECT_EQ(pool.busyThreads(), 0u);
}

TEST(APool, startsThreadsAgainAfterAllHaveEnded) {
    ThreadPool pool(2, milliseconds(1));
    const auto ends = std::make_shared<Events>();
    for (int round = 1; round <= 5; ++round) {
        pool.run([ends] { endOfThread.events = ends; });
        EXPECT_TRUE(ends->waitFor(round));
    }
    EXPECT_TRUE(pool.shutDown(generous));
}

TEST(APool, losesNoWorkThatComesJustWhenAnIdleThreadEnds) {
    ThreadPool pool(2, milliseconds(0));
    Events ended;
    for (int piece = 1; piece <= 500; ++piece) {
        pool.run([&ended] { ended.happen(); });
        if (piece % 3 != 0) continue;
        EXPECT_TRUE(ended.waitFor(piece));
    }
    EXPECT_TRUE(ended.waitFor(500));
    EXPECT_TRUE(pool.shutDown(generous));
}

TEST(APool, letsGoOfWhatAPieceHeldWhenThePieceHasEnded) {
    ThreadPool pool(1);
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    pool.run([kept = std::move(held)] {});
    EXPECT_TRUE(becomesTrue([&] { return watched.expired(); }));
    EXPECT_TRUE(becomesTrue([&] { return pool.busyThreads() == 0; }));
    EXPECT_TRUE(pool.shutDown(generous));
}

TEST(APool, isIdleOnlyWhenNothingRunsAndNothingWaits) {
    ThreadPool pool(1);
    EXPECT_TRUE(pool.waitUntilIdle(noPatience));
    Stuck stuck;
    Events ended;
    pool.run(stuck.work());
    pool.run([&ended] { ended.happen(); });
    EXPECT_TRUE(stuck.entered->waitFor(1));
    EXPECT_FALSE(pool.waitUntilIdle(noPatience));
    stuck.release.set_value();
    EXPECT_TRUE(pool.waitUntilIdle(generous));
    EXPECT_EQ(ended.count(), 1);
    EXPECT_EQ(pool.busyThreads(), 0u);
}

TEST(APool, letsAThreadTakeWhatItsPieceHandedOver) {
    ThreadPool pool(4);
    Events ran;
    std::vector<std::thread::id> threads;
    std::function<void(int)> handOver = [&](int left) {
        threads.push_back(std::this_thread::get_id());
        if (left > 0) pool.run([&, left] { handOver(left - 1); });
        ran.happen();
    };
    pool.run([&] { handOver(50); });
    ASSERT_TRUE(ran.waitFor(51));
    EXPECT_EQ(threads, std::vector(51, threads.front()));
}

TEST(APool, letsOtherThreadsTakeWhatAPieceHandedOverWhenThatIsMoreThanOne) {
    ThreadPool pool(4);
    Events handedOver;
    Events ended;
    pool.run([&] {
        for (int i = 0; i < 2; ++i)
            pool.run([&] { handedOver.happen(); });
        if (handedOver.waitFor(2)) ended.happen();
    });
    EXPECT_TRUE(ended.waitFor(1));
}

TEST(APool, wakesAnIdleThreadAlsoWhileAPieceIsHandedOverAndStuck) {
    ThreadPool pool(4, std::chrono::hours(1));
    Events begun;
    std::promise<void> goOn;
    const auto signal = goOn.get_future().share();
    const auto stuck = [&begun, signal] {
        begun.happen();
        signal.wait();
    };
    // Two threads that become idle.
    Events together;
    for (int i = 0; i < 2; ++i)
        pool.run([&] {
            together.happen();
            ASSERT_TRUE(together.waitFor(2));
        });
    ASSERT_TRUE(together.waitFor(2));
    ASSERT_TRUE(pool.waitUntilIdle(generous));

    Events handedOver;
    pool.run([&] {
        pool.run(stuck);
        handedOver.happen();
        signal.wait();
    });
    ASSERT_TRUE(handedOver.waitFor(1));
    Events ran;
    pool.run([&] { ran.happen(); });
    EXPECT_TRUE(ran.waitFor(1));
    EXPECT_TRUE(begun.waitFor(1));
    goOn.set_value();
    EXPECT_TRUE(pool.waitUntilIdle(generous));
}

TEST(AStandingThread, runsEverythingThatComesOneByOne) {
    ThreadPool pool(4, milliseconds(0), 1);
    std::vector<std::thread::id> threads;
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(pool.waitUntilIdle(generous));
        Events ran;
        pool.run([&] {
            threads.push_back(std::this_thread::get_id());
            ran.happen();
        });
        ASSERT_TRUE(ran.waitFor(1));
    }
    EXPECT_EQ(threads, std::vector(50, threads.front()));
}

TEST(AStandingThread, remainsWhenThoseBesideItHaveEnded) {
    ThreadPool pool(2, milliseconds(0), 1);
    const auto ends = std::make_shared<Events>();
    for (int round = 0; round < 2; ++round) {
        Events started;
        std::promise<void> goOn;
        const auto signal = goOn.get_future().share();
        for (int i = 0; i < 2; ++i)
            pool.run([&started, signal, ends] {
                endOfThread.events = ends;
                started.happen();
                signal.wait();
            });
        ASSERT_TRUE(started.waitFor(2));
        goOn.set_value();
        ASSERT_TRUE(ends->waitFor(round + 1));
        EXPECT_EQ(ends->count(), round + 1);
    }
}

TEST(AStandingThread, endsWithItsPool) {
    const auto ends = std::make_shared<Events>();
    ThreadPool pool(1, std::chrono::hours(1), 1);
    pool.run([ends] { endOfThread.events = ends; });
    ASSERT_TRUE(pool.waitUntilIdle(generous));
    EXPECT_EQ(ends->count(), 0);
    EXPECT_TRUE(pool.shutDown(generous));
    EXPECT_EQ(ends->count(), 1);
}

TEST(AShutDownPool, dropsWorkUnrun) {
    ThreadPool pool(2);
    EXPECT_TRUE(pool.shutDown(noPatience));
    const auto held = std::make_shared<int>(1);
    pool.run([held] { ADD_FAILURE() << "work ran after the shutdown"; });
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(pool.busyThreads(), 0u);
    EXPECT_TRUE(pool.shutDown(generous));
}

TEST(AShutDownPool, dropsWhatWaitsAndWaitsForWhatRuns) {
    ThreadPool pool(1);
    Stuck stuck;
    pool.run(stuck.work());
    EXPECT_TRUE(stuck.entered->waitFor(1));
    const auto held = std::make_shared<int>(1);
    pool.run([held] { ADD_FAILURE() << "waiting work ran in spite of the shutdown"; });
    EXPECT_EQ(held.use_count(), 2);
    EXPECT_FALSE(pool.shutDown(noPatience));
    EXPECT_EQ(held.use_count(), 1);
    stuck.release.set_value();
    EXPECT_TRUE(pool.shutDown(generous));
    EXPECT_EQ(stuck.left->count(), 1);
}

TEST(AShutDownPool, keepsTurnsThatWaitAndTakesMoreOfThem) {
    ThreadPool pool(1);
    Stuck stuck;
    pool.run(stuck.work());
    EXPECT_TRUE(stuck.entered->waitFor(1));
    Events turns;
    pool.run([] { ADD_FAILURE() << "waiting work ran in spite of the shutdown"; });
    pool.runTurn([&turns] { turns.happen(); });
    EXPECT_FALSE(pool.shutDown(noPatience));
    pool.runTurn([&turns] { turns.happen(); });
    EXPECT_EQ(turns.count(), 0);
    stuck.release.set_value();
    EXPECT_TRUE(turns.waitFor(2));
    EXPECT_TRUE(pool.shutDown(generous));
    pool.runTurn([&turns] { turns.happen(); });
    EXPECT_TRUE(turns.waitFor(3)) << "no thread was left";
    EXPECT_TRUE(pool.shutDown(generous));
}

TEST(AShutDownPool, tellsWhileAPieceIsStuckAndNoLongerOnceItReturned) {
    ThreadPool pool(2);
    Stuck stuck;
    pool.run(stuck.work());
    EXPECT_TRUE(stuck.entered->waitFor(1));
    EXPECT_FALSE(pool.shutDown(noPatience));
    EXPECT_FALSE(pool.shutDown(milliseconds(1)));
    EXPECT_EQ(pool.busyThreads(), 1u);
    stuck.release.set_value();
    EXPECT_TRUE(pool.shutDown(generous));
    EXPECT_EQ(pool.busyThreads(), 0u);
}

TEST(AShutDownPool, mayBeDestroyedWhileAPieceIsStuck) {
    Stuck stuck;
    const auto ends = std::make_shared<Events>();
    {
        auto pool = std::make_unique<ThreadPool>(2);
        pool->run([ends, work = stuck.work()] {
            endOfThread.events = ends;
            work();
        });
        EXPECT_TRUE(stuck.entered->waitFor(1));
        EXPECT_FALSE(pool->shutDown(noPatience));
    }
    EXPECT_EQ(stuck.left->count(), 0);
    stuck.release.set_value();
    EXPECT_TRUE(ends->waitFor(1));
    EXPECT_EQ(stuck.left->count(), 1);
}

TEST(AShutDownPool, endsItsIdleThreadsWithoutWaitingForTheirIdleTime) {
    ThreadPool pool(3, std::chrono::hours(1));
    Events ended;
    for (int piece = 0; piece < 3; ++piece)
        pool.run([&ended] { ended.happen(); });
    EXPECT_TRUE(ended.waitFor(3));
    EXPECT_TRUE(pool.shutDown(generous));
}

Task<bool> resolveUntilAbandoned(BlockingPool& pool, std::function<void()> work, std::stop_token abandon) {
    auto waiting = offloadOrAbandon(pool, std::move(work), std::move(abandon));
    const auto result = co_await std::move(waiting);
    co_return result.has_value();
}

Task<bool> sleepUntilCancelled(Clock& clock) {
    const SleepResult result = co_await sleepUntil(clock, Instant::max());
    co_return result == SleepResult::Cancelled;
}

Task<> reportBoth(TaskHandle<bool> first, TaskHandle<bool> second, std::promise<void>& ended) {
    co_await first.join();
    co_await second.join();
    ended.set_value();
}

TEST(TheOrderOfShuttingDown, endsEveryTaskBeforeThePoolAlsoWithAResolutionStuck) {
    Stuck resolution;
    const auto resolutionEnds = std::make_shared<Events>();
    TaskHandle<bool> resolving;
    TaskHandle<bool> sleeping;
    {
        VirtualClock clock;
        ThreadPool pool(3);
        SerialExecutor executor(pool);
        std::stop_source abandon;
        auto work = [ends = resolutionEnds, stuck = resolution.work()] {
            endOfThread.events = ends;
            stuck();
        };
        resolving = spawn(executor, resolveUntilAbandoned(pool, work, abandon.get_token()));
        sleeping = spawn(executor, sleepUntilCancelled(clock));
        EXPECT_TRUE(resolution.entered->waitFor(1));

        resolving.cancel();
        sleeping.cancel();
        abandon.request_stop();
        std::promise<void> ended;
        spawn(executor, reportBoth(resolving, sleeping, ended));
        ASSERT_EQ(ended.get_future().wait_for(generous), std::future_status::ready);
        EXPECT_EQ(clock.timerCount(), 0u);
        // The executor is drained when it holds no thread any more: the one left is the stuck resolution's.
        EXPECT_TRUE(becomesTrue([&] { return pool.busyThreads() == 1; }));
        EXPECT_FALSE(pool.shutDown(noPatience));
    }
    EXPECT_FALSE(resolving.take());
    EXPECT_TRUE(sleeping.take());
    resolution.release.set_value();
    EXPECT_TRUE(resolutionEnds->waitFor(1));
}

} // namespace
} // namespace kestrin
