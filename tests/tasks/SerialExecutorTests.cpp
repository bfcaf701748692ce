#include "tasks/SerialExecutor.h"

#include "fakes/ManualPool.h"
#include "tasks/ThreadPool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace kestrin {
namespace {

constexpr std::chrono::milliseconds generous = std::chrono::seconds(100);

TEST(ASerialExecutor, neverRunsWorkInsidePost) {
    ManualPool pool;
    SerialExecutor executor(pool);
    bool ran = false;
    executor.post([&ran] { ran = true; });
    EXPECT_FALSE(ran);
    pool.finish();
    EXPECT_TRUE(ran);
}

TEST(ASerialExecutor, neverRunsNestedWorkInsidePost) {
    ManualPool pool;
    SerialExecutor executor(pool);
    std::vector<int> order;
    executor.post([&] {
        executor.post([&order] { order.push_back(2); });
        order.push_back(1);
    });
    pool.finish();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(ASerialExecutor, asksForOneThreadHoweverMuchWaits) {
    ManualPool pool;
    SerialExecutor executor(pool);
    std::vector<int> order;
    for (int piece = 0; piece < 5; ++piece)
        executor.post([&order, piece] { order.push_back(piece); });
    EXPECT_EQ(pool.waiting(), 1u);
    pool.finish();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(ASerialExecutor, givesTheThreadBackWhenNothingIsLeft) {
    ManualPool pool;
    SerialExecutor executor(pool);
    for (int round = 1; round <= 3; ++round) {
        int ran = 0;
        executor.post([&ran] { ++ran; });
        EXPECT_EQ(pool.waiting(), 1u);
        pool.finish();
        EXPECT_EQ(pool.waiting(), 0u);
        EXPECT_EQ(ran, 1);
    }
}

TEST(ASerialExecutor, letsGoOfAPieceBeforeItRunsTheNext) {
    ManualPool pool;
    SerialExecutor executor(pool);
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    bool gone = false;
    executor.post([kept = std::move(held)] {});
    executor.post([&] { gone = watched.expired(); });
    pool.finish();
    EXPECT_TRUE(gone);
}

TEST(ASerialExecutor, mayBeDestroyedByItsOwnWork) {
    ManualPool pool;
    auto executor = std::make_unique<SerialExecutor>(pool);
    bool ranAfterwards = false;
    executor->post([&executor] { executor.reset(); });
    executor->post([&ranAfterwards] { ranAfterwards = true; });
    pool.finish();
    EXPECT_EQ(executor, nullptr);
    EXPECT_TRUE(ranAfterwards);
}

/// A pool that has no thread to give, at first.
class RefusingPool : public ManualPool {
public:
    void run(std::function<void()> work) override {
        if (refuses) throw std::runtime_error("no thread");
        ManualPool::run(std::move(work));
    }
    bool refuses = true;
};

TEST(ASerialExecutor, keepsItsWorkWhileItsPoolHasNoThreadToGive) {
    RefusingPool pool;
    SerialExecutor executor(pool);
    std::vector<int> order;
    executor.post([&order] { order.push_back(1); });
    EXPECT_TRUE(order.empty());
    pool.refuses = false;
    executor.post([&order] { order.push_back(2); });
    ASSERT_EQ(pool.waiting(), 1u);
    pool.finish();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(ASerialExecutor, isTheCurrentOneWhileItsWorkRuns) {
    ManualPool pool;
    SerialExecutor executor(pool);
    EXPECT_EQ(Executor::current(), nullptr);
    executor.post([&executor] { EXPECT_EQ(Executor::current(), &executor); });
    pool.finish();
    EXPECT_EQ(Executor::current(), nullptr);
}

TEST(ASerialExecutor, runsOneThingAtATimeInTheOrderOfEachPoster) {
    constexpr std::size_t posters = 4;
    constexpr std::size_t pieces = 500;
    ThreadPool pool(4, std::chrono::milliseconds(0));
    SerialExecutor executor(pool);
    // Touched by the executor alone and so without a lock; the thread sanitizer watches.
    std::vector<std::vector<std::size_t>> order(posters);
    std::size_t total = 0;
    std::promise<void> all;
    {
        std::vector<std::jthread> threads;
        for (std::size_t poster = 0; poster < posters; ++poster)
            threads.emplace_back([&, poster] {
                for (std::size_t piece = 0; piece < pieces; ++piece)
                    executor.post([&, poster, piece] {
                        order[poster].push_back(piece);
                        if (++total == posters * pieces) all.set_value();
                    });
            });
    }
    ASSERT_EQ(all.get_future().wait_for(generous), std::future_status::ready);
    for (const std::vector<std::size_t>& one : order) {
        ASSERT_EQ(one.size(), pieces);
        EXPECT_TRUE(std::is_sorted(one.begin(), one.end()));
    }
    EXPECT_TRUE(pool.shutDown(generous));
}

} // namespace
} // namespace kestrin
