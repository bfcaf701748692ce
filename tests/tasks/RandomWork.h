#pragma once

#include "tasks/BlockingPool.h"
#include "tasks/Clock.h"
#include "tasks/Concurrently.h"
#include "tasks/FifoGate.h"
#include "tasks/Offload.h"
#include "tasks/Sleep.h"
#include "tasks/TaskScope.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <random>
#include <stdexcept>
#include <stop_token>
#include <vector>

namespace kestrin {

/// Everything that random trees of tasks run on, and the counts that must agree when all have ended.
struct RandomWorld {
    RandomWorld(Executor& homeExecutor, Executor& otherExecutor, Clock& worldClock, BlockingPool& worldPool)
        : home(homeExecutor), away(otherExecutor), clock(worldClock), pool(worldPool) {}

    Executor& home;
    Executor& away;
    Clock& clock;
    BlockingPool& pool;
    FifoGate gate;
    TaskScope scope;
    std::stop_source abandon;

    std::atomic<int> framesBegun = 0;
    std::atomic<int> framesEnded = 0;
    std::atomic<int> inside = 0;
    std::atomic<bool> overlapped = false;
    std::atomic<int> piecesBegun = 0;
    std::atomic<int> piecesEnded = 0;
    std::atomic<int> piecesDropped = 0;
};

/// Numbers of 32 bits that a seed determines, the same with every library.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : engine_(seed) {}
    std::uint32_t operator()() { return static_cast<std::uint32_t>(engine_()); }

private:
    std::mt19937 engine_;
};

class RandomFailure : public std::runtime_error {
public:
    RandomFailure() : std::runtime_error("a random failure") {}
};

/// Counts a frame in and, however it ends, out.
class FrameCount {
public:
    explicit FrameCount(RandomWorld& world) : world_(world) { ++world_.framesBegun; }
    FrameCount(const FrameCount&) = delete;
    FrameCount& operator=(const FrameCount&) = delete;
    ~FrameCount() { ++world_.framesEnded; }

private:
    RandomWorld& world_;
};

class InsideTheGate {
public:
    explicit InsideTheGate(RandomWorld& world) : world_(world) {
        if (world_.inside.fetch_add(1) != 0) world_.overlapped = true;
    }
    InsideTheGate(const InsideTheGate&) = delete;
    InsideTheGate& operator=(const InsideTheGate&) = delete;
    ~InsideTheGate() { --world_.inside; }

private:
    RandomWorld& world_;
};

inline Task<> randomSleep(RandomWorld& world, std::uint32_t milliseconds) {
    const FrameCount frame(world);
    const Instant when = world.clock.now() + std::chrono::milliseconds(milliseconds);
    co_await sleepUntil(world.clock, when);
}

inline Task<int> randomPiece(RandomWorld& world, bool fails) {
    const FrameCount frame(world);
    ++world.piecesBegun;
    auto work = [&world, fails](std::stop_token token) {
        ++world.piecesEnded;
        if (fails) throw RandomFailure();
        return token.stop_requested() ? 0 : 1;
    };
    try {
        Task<int> waiting = offload(world.pool, work);
        co_return co_await std::move(waiting);
    } catch (const CancellationError&) {
        ++world.piecesDropped;
        throw;
    }
}

inline Task<int> randomAbandonablePiece(RandomWorld& world) {
    const FrameCount frame(world);
    auto work = [] { return 1; };
    auto waiting = offloadOrAbandon(world.pool, work, world.abandon.get_token());
    const std::optional<int> result = co_await std::move(waiting);
    co_return result.value_or(0);
}

inline Task<> randomTurn(RandomWorld& world, std::uint32_t choice) {
    const FrameCount frame(world);
    const std::optional<FifoGate::Turn> turn = co_await world.gate.enter();
    if (!turn) co_return;
    const InsideTheGate inside(world);
    const TaskContext context = co_await currentContext();
    if (context.isCancelled()) co_return;
    if (choice % 8 == 7) throw RandomFailure();
    if (choice % 2 == 0) {
        Task<> sleep = randomSleep(world, choice % 50);
        co_await std::move(sleep);
    } else {
        Task<int> piece = randomPiece(world, choice % 5 == 0);
        co_await std::move(piece);
    }
}

inline Task<int> randomTree(RandomWorld& world, std::uint32_t seed, int depth);

/// Trees in a scope of their own inside the world's, which is cancelled sometimes and joined always.
inline Task<int> randomScope(RandomWorld& world, std::uint32_t seed, int depth) {
    const FrameCount frame(world);
    Dice random(seed);
    TaskScope inner = world.scope.inner();
    const TaskContext context = co_await currentContext();
    const std::stop_callback<std::function<void()>> link(context.stopToken, [&inner] { inner.cancel(); });
    for (std::uint32_t count = 1 + random() % 3; count > 0; --count)
        inner.spawn(random() % 2 == 0 ? world.home : world.away, randomTree(world, random(), depth));
    if (random() % 4 == 0) {
        Task<> sleep = randomSleep(world, random() % 20);
        co_await std::move(sleep);
        inner.cancel();
    }
    Task<> join = inner.join();
    co_await std::move(join);
    co_return static_cast<int>(inner.size());
}

/// An operation that its caller's cancellation does not reach. Gives whether it saw one.
inline Task<bool> randomOperation(RandomWorld& world, std::uint32_t milliseconds) {
    const FrameCount frame(world);
    Task<> sleep = randomSleep(world, milliseconds);
    co_await std::move(sleep);
    const TaskContext context = co_await currentContext();
    co_return context.isCancelled() && !world.scope.isCancelled();
}

/// A random tree of sleeps, pieces of blocking work, turns of the gate, groups, scopes, operations and excursions
/// to the other executor. Stops at a cancellation that it sees, and sometimes throws.
inline Task<int> randomTree(RandomWorld& world, std::uint32_t seed, int depth) {
    const FrameCount frame(world);
    Dice random(seed);
    int steps = 0;
    for (std::uint32_t left = 1 + random() % 4; left > 0; --left) {
        const TaskContext context = co_await currentContext();
        if (context.isCancelled()) co_return steps;
        switch (random() % (depth > 0 ? 9 : 5)) {
        case 0: {
            Task<> sleep = randomSleep(world, random() % 100);
            co_await std::move(sleep);
            break;
        }
        case 1: {
            Task<int> piece = randomPiece(world, random() % 16 == 0);
            steps += co_await std::move(piece);
            break;
        }
        case 2: {
            Task<> turn = randomTurn(world, random());
            co_await std::move(turn);
            break;
        }
        case 3: {
            Task<int> piece = randomAbandonablePiece(world);
            steps += co_await std::move(piece);
            break;
        }
        case 4: {
            Executor& owner = context.executor == &world.home ? world.away : world.home;
            Task<bool> operation = runToCompletion(world.scope, owner, randomOperation(world, random() % 30));
            if (co_await std::move(operation)) world.overlapped = true;
            break;
        }
        case 5: {
            Task<int> inScope = randomScope(world, random(), depth - 1);
            steps += co_await std::move(inScope);
            break;
        }
        case 6: {
            std::vector<Task<int>> children;
            for (std::uint32_t more = 1 + random() % 3; more > 0; --more)
                children.push_back(randomTree(world, random(), depth - 1));
            Task<std::vector<int>> all = whenAll(std::move(children));
            const std::vector<int> results = co_await std::move(all);
            for (const int result : results)
                steps += result;
            break;
        }
        case 7: {
            Executor& elsewhere = context.executor == &world.home ? world.away : world.home;
            Task<int> there = runOn(elsewhere, randomTree(world, random(), depth - 1));
            steps += co_await std::move(there);
            break;
        }
        default: {
            std::vector<std::uint32_t> seeds{random(), random(), random(), random()};
            auto start = [&world, depth](
                             std::uint32_t childSeed) { return randomTree(world, childSeed, depth - 1); };
            Task<std::vector<int>> map = boundedMap(std::move(seeds), 2, start);
            const std::vector<int> results = co_await std::move(map);
            for (const int result : results)
                steps += result;
            break;
        }
        }
        ++steps;
    }
    if (random() % 32 == 0) throw RandomFailure();
    co_return steps;
}

} // namespace kestrin
