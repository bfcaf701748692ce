#include "platform/QtExecutor.h"

#include "platform/EventWait.h"

#include <QEventLoop>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace kestrin {

using test::waitUntil;

TEST(TheMainLoopsExecutor, runsWorkInOrderAndNeverInsidePost) {
    QtExecutor executor;
    std::vector<int> ran;
    for (int i = 0; i < 3; ++i)
        executor.post([&ran, i] { ran.push_back(i); });
    EXPECT_TRUE(ran.empty());
    ASSERT_TRUE(waitUntil([&] { return ran.size() == 3; }));
    EXPECT_EQ(ran, (std::vector{0, 1, 2}));
}

TEST(TheMainLoopsExecutor, wakesTheLoopOnceForABatch) {
    QtExecutor executor;
    int ran = 0;
    for (int i = 0; i < 1000; ++i)
        executor.post([&] { ++ran; });
    ASSERT_TRUE(waitUntil([&] { return ran == 1000; }));
    EXPECT_EQ(executor.wakeUps(), 1U);
}

TEST(TheMainLoopsExecutor, leavesWhatWorkPostsToTheNextTurn) {
    QtExecutor executor;
    std::size_t turnOfTheSecond = 0;
    executor.post([&] { executor.post([&] { turnOfTheSecond = executor.wakeUps(); }); });
    ASSERT_TRUE(waitUntil([&] { return turnOfTheSecond != 0; }));
    EXPECT_EQ(turnOfTheSecond, 2U);
}

TEST(TheMainLoopsExecutor, takesWorkFromOtherThreadsWithoutLosingAny) {
    QtExecutor executor;
    int ran = 0;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i)
                executor.post([&] { ++ran; });
        });
    EXPECT_TRUE(waitUntil([&] { return ran == 2000; }));
}

TEST(TheMainLoopsExecutor, goesOnInsideALoopThatWorkOpens) {
    QtExecutor executor;
    std::vector<int> ran;
    executor.post([&] {
        ran.push_back(1);
        EXPECT_TRUE(waitUntil([&] { return ran.size() == 3; }));
    });
    executor.post([&] { ran.push_back(2); });
    executor.post([&] { ran.push_back(3); });
    ASSERT_TRUE(waitUntil([&] { return ran.size() == 3; }));
    EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TEST(TheMainLoopsExecutor, drainsAlsoWhatWorkPosts) {
    QtExecutor executor;
    std::vector<int> ran;
    executor.post([&] {
        ran.push_back(1);
        executor.post([&] { ran.push_back(2); });
    });
    executor.drain();
    EXPECT_EQ(ran, (std::vector{1, 2}));
}

TEST(TheMainLoopsExecutor, dropsWhatIsLeftAtItsEnd) {
    auto owned = std::make_shared<int>(0);
    {
        QtExecutor executor;
        executor.post([owned] { ++*owned; });
    }
    QEventLoop().processEvents();
    EXPECT_EQ(*owned, 0);
    EXPECT_EQ(owned.use_count(), 1);
}

} // namespace kestrin
