#include "tasks/RandomWork.h"

#include "fakes/VirtualClock.h"
#include "tasks/SerialExecutor.h"
#include "tasks/Spawn.h"
#include "tasks/ThreadPool.h"

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <thread>
#include <vector>

namespace kestrin {
namespace {

constexpr std::chrono::milliseconds generous = std::chrono::seconds(100);
constexpr std::size_t treeCount = 40;

/// Ends counted per tree; each must be 1.
using Ends = std::array<std::atomic<int>, treeCount>;

class EndCount {
public:
    explicit EndCount(std::atomic<int>& count) : count_(count) {}
    EndCount(const EndCount&) = delete;
    EndCount& operator=(const EndCount&) = delete;
    ~EndCount() { ++count_; }

private:
    std::atomic<int>& count_;
};

Task<int> countedTree(RandomWorld& world, std::uint32_t seed, std::atomic<int>& ends) {
    const EndCount count(ends);
    Task<int> tree = randomTree(world, seed, 2);
    co_return co_await std::move(tree);
}

/// Waits for every tree, each awaited by value as well so that several wait for one; gives how many threw. A pool
/// that ends in mid-flight cancels what it drops.
Task<int> supervise(std::vector<TaskHandle<int>> trees) {
    int failures = 0;
    for (const TaskHandle<int>& tree : trees) {
        co_await tree.join();
        try {
            co_await tree.value();
        } catch (const RandomFailure&) {
            ++failures;
        } catch (const CancellationError&) {
            ++failures;
        }
    }
    co_return failures;
}

Task<> report(std::vector<TaskHandle<int>> supervisors, const TaskScope& scope, std::promise<void>& ended) {
    for (const TaskHandle<int>& supervisor : supervisors)
        co_await supervisor.join();
    Task<> end = scope.join();
    co_await std::move(end);
    ended.set_value();
}

/// Whether the pool of the pieces outlasts the trees, or ends while they run, alone or with that of the executors.
enum class EndOfPools { AfterTheTrees, OfPiecesInMidFlight, OfAllInMidFlight };

void runWithRealThreads(std::uint32_t seed, EndOfPools ending) {
    SCOPED_TRACE(seed);
    Dice random(seed);
    VirtualClock clock;
    ThreadPool pool(4, std::chrono::milliseconds(1));
    ThreadPool executorPool(2, std::chrono::milliseconds(1));
    const bool isOnePool = ending != EndOfPools::OfPiecesInMidFlight;
    SerialExecutor home(isOnePool ? pool : executorPool);
    SerialExecutor away(isOnePool ? pool : executorPool);
    RandomWorld world(home, away, clock, pool);
    Ends ends{};

    std::vector<TaskHandle<int>> trees;
    for (std::size_t tree = 0; tree < treeCount; ++tree)
        trees.push_back(world.scope.spawn(tree % 2 == 0 ? home : away, countedTree(world, random(), ends[tree])));
    const std::vector<TaskHandle<int>> supervisors{spawn(home, supervise(trees)), spawn(away, supervise(trees))};
    std::promise<void> ended;
    spawn(home, report(supervisors, world.scope, ended));

    {
        std::vector<std::jthread> threads;
        if (ending != EndOfPools::AfterTheTrees)
            threads.emplace_back([&pool, pause = random() % 200] {
                for (std::uint32_t left = pause; left > 0; --left)
                    std::this_thread::yield();
                (void)pool.shutDown(std::chrono::milliseconds(0));
            });
        threads.emplace_back([&clock](std::stop_token stop) {
            while (!stop.stop_requested()) {
                clock.advance(std::chrono::milliseconds(10));
                std::this_thread::yield();
            }
        });
        for (int canceller = 0; canceller < 2; ++canceller)
            threads.emplace_back([&trees, &world, canceller, own = Dice(random())](std::stop_token stop) mutable {
                for (int round = 0; round < 15 && !stop.stop_requested(); ++round) {
                    for (std::uint32_t pause = own() % 8; pause > 0; --pause)
                        std::this_thread::yield();
                    trees[own() % trees.size()].cancel();
                }
                if (canceller == 0 && own() % 2 == 0) world.abandon.request_stop();
                if (canceller == 1 && own() % 2 == 0) world.scope.cancel();
            });
        ASSERT_EQ(ended.get_future().wait_for(generous), std::future_status::ready);
    }

    EXPECT_TRUE(pool.shutDown(generous));
    EXPECT_TRUE(executorPool.shutDown(generous));
    for (std::size_t tree = 0; tree < treeCount; ++tree) {
        EXPECT_TRUE(trees[tree].done());
        EXPECT_EQ(ends[tree], 1);
    }
    EXPECT_EQ(supervisors[0].take(), supervisors[1].take());
    EXPECT_EQ(world.framesBegun, world.framesEnded);
    EXPECT_EQ(world.piecesBegun, world.piecesEnded + world.piecesDropped);
    EXPECT_EQ(world.scope.size(), 0u);
    EXPECT_FALSE(world.overlapped);
    EXPECT_EQ(clock.timerCount(), 0u);
    EXPECT_EQ(pool.busyThreads(), 0u);
}

TEST(TasksOnRealThreads, eachEndExactlyOnceUnderCancellationFromOtherThreads) {
    for (std::uint32_t seed = 1; seed <= 8; ++seed)
        runWithRealThreads(seed, EndOfPools::AfterTheTrees);
}

TEST(TasksOnRealThreads, eachEndExactlyOnceWhenThePoolOfTheirWorkEndsMeanwhile) {
    for (std::uint32_t seed = 101; seed <= 108; ++seed)
        runWithRealThreads(seed, EndOfPools::OfPiecesInMidFlight);
}

TEST(TasksOnRealThreads, eachEndExactlyOnceWhenThePoolOfTheirExecutorsEndsMeanwhile) {
    for (std::uint32_t seed = 201; seed <= 208; ++seed)
        runWithRealThreads(seed, EndOfPools::OfAllInMidFlight);
}

Task<int> sleepFor(Clock& clock, int milliseconds) {
    const Instant when = clock.now() + std::chrono::milliseconds(milliseconds);
    const SleepResult result = co_await sleepUntil(clock, when);
    co_return result == SleepResult::Elapsed ? 0 : 1;
}

Task<> reportAll(std::vector<TaskHandle<int>> sleepers, std::promise<void>& ended) {
    for (const TaskHandle<int>& sleeper : sleepers)
        co_await sleeper.join();
    ended.set_value();
}

TEST(TasksOnRealThreads, wakeOnceWhenTheirTimerAndTheirCancellationRace) {
    VirtualClock clock;
    ThreadPool pool(2);
    SerialExecutor executor(pool);
    for (int round = 0; round < 10; ++round) {
        std::vector<TaskHandle<int>> sleepers;
        for (int sleeper = 0; sleeper < 50; ++sleeper)
            sleepers.push_back(spawn(executor, sleepFor(clock, 1 + sleeper)));
        std::promise<void> ended;
        spawn(executor, reportAll(sleepers, ended));
        {
            const std::jthread time([&clock](std::stop_token stop) {
                while (!stop.stop_requested()) {
                    clock.advance(std::chrono::milliseconds(1));
                    std::this_thread::yield();
                }
            });
            const std::jthread cancelling([&sleepers] {
                for (const TaskHandle<int>& sleeper : sleepers)
                    sleeper.cancel();
            });
            ASSERT_EQ(ended.get_future().wait_for(generous), std::future_status::ready);
        }
        EXPECT_EQ(clock.timerCount(), 0u);
    }
    EXPECT_TRUE(pool.shutDown(generous));
}

} // namespace
} // namespace kestrin
