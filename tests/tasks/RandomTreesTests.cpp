#include "tasks/RandomWork.h"

#include "fakes/ManualExecutor.h"
#include "fakes/ManualPool.h"
#include "fakes/VirtualClock.h"
#include "tasks/Spawn.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestrin {
namespace {

/// Whether the trees end by themselves or are all cancelled in the end.
enum class Ending { ByThemselves, Cancelled };

class VirtualWorld {
public:
    explicit VirtualWorld(std::uint32_t seed) : random_(seed) {
        for (int tree = 0; tree < 8; ++tree)
            trees_.push_back(world_.scope.spawn(home_, randomTree(world_, random_(), 3)));
    }

    void takeRandomSteps(int count) {
        for (int step = 0; step < count; ++step) {
            switch (random_() % 16) {
            case 0:
                trees_[random_() % trees_.size()].cancel();
                break;
            case 1:
            case 2:
            case 3:
                clock_.advance(std::chrono::milliseconds(random_() % 30));
                break;
            case 4:
            case 5:
            case 6:
                if (pool_.waiting() > 0) pool_.finish(random_() % pool_.waiting());
                break;
            case 7:
                if (random_() % 64 == 0) world_.abandon.request_stop();
                if (random_() % 64 == 0) pool_.dropAll();
                break;
            case 8:
            case 9:
            case 10:
                away_.runOne();
                break;
            default:
                home_.runOne();
                break;
            }
        }
    }

    void cancelAll() { world_.scope.cancel(); }

    /// Lets the executors, the pool and the time go on until nothing is left to do.
    void drain() {
        while (true) {
            if (home_.runUntilIdle() + away_.runUntilIdle() > 0) continue;
            if (pool_.waiting() > 0)
                pool_.finish(random_() % pool_.waiting());
            else if (const auto deadline = clock_.nextDeadline())
                clock_.advance(*deadline - clock_.now());
            else
                return;
        }
    }

    void expectNothingLeft() {
        for (const TaskHandle<int>& tree : trees_) {
            ASSERT_TRUE(tree.done());
            try {
                EXPECT_GE(tree.take(), 0);
            } catch (const RandomFailure&) {
                ++failures;
            } catch (const CancellationError&) {
                ++drops;
            }
        }
        EXPECT_EQ(world_.scope.size(), 0u);
        EXPECT_GT(world_.framesBegun, 0);
        EXPECT_EQ(world_.framesBegun, world_.framesEnded);
        EXPECT_EQ(world_.piecesBegun, world_.piecesEnded + world_.piecesDropped);
        EXPECT_FALSE(world_.overlapped);
        EXPECT_EQ(world_.inside, 0);
        EXPECT_EQ(clock_.timerCount(), 0u);
        EXPECT_EQ(pool_.waiting(), 0u);
        // Nobody waits at the gate: whoever comes now is let in within its first step.
        const TaskHandle<> entering = spawn(home_, enter(world_.gate));
        EXPECT_EQ(home_.runUntilIdle(), 1u);
        EXPECT_TRUE(entering.done());
        EXPECT_EQ(away_.waiting(), 0u);
    }

    int failures = 0;
    int drops = 0;

private:
    static Task<> enter(FifoGate& gate) { const std::optional<FifoGate::Turn> turn = co_await gate.enter(); }

    Dice random_;
    ManualExecutor home_;
    ManualExecutor away_;
    VirtualClock clock_;
    ManualPool pool_;
    RandomWorld world_{home_, away_, clock_, pool_};
    std::vector<TaskHandle<int>> trees_;
};

void runWorlds(std::uint32_t firstSeed, Ending ending) {
    int failures = 0;
    int drops = 0;
    for (std::uint32_t seed = firstSeed; seed < firstSeed + 150; ++seed) {
        SCOPED_TRACE(seed);
        VirtualWorld world(seed);
        world.takeRandomSteps(300);
        if (ending == Ending::Cancelled) world.cancelAll();
        world.drain();
        world.expectNothingLeft();
        if (testing::Test::HasFatalFailure()) return;
        failures += world.failures;
        drops += world.drops;
    }
    EXPECT_GT(drops, 0) << "no pool ever dropped work";
    EXPECT_GT(failures, 0) << "no tree ever threw, so that nothing was shown about throwing";
}

TEST(RandomTrees, endByThemselvesAndLeaveNoTimerWaiterOrWork) {
    runWorlds(1000, Ending::ByThemselves);
}

TEST(RandomTrees, endOnceTheyAreCancelledAndLeaveNoTimerWaiterOrWork) {
    runWorlds(2000, Ending::Cancelled);
}

} // namespace
} // namespace kestrin
