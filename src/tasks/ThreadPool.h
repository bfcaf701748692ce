#pragma once

#include "tasks/BlockingPool.h"

#include <chrono>
#include <cstddef>
#include <memory>

namespace kestrin {

/// Threads that are started when work waits and none is idle, up to a limit, and that end after a short idle time,
/// so that a quiet program has only its standing ones. Work beyond the limit waits in order. The pool may be
/// destroyed while work is stuck: such threads are left behind and touch nothing of the pool's owner, only what
/// their work owns. Work submitted by a running piece may start only after that piece returns: submit it last, and
/// never wait for it.
class ThreadPool : public BlockingPool {
public:
    /// `standingThreads` are started here and stay; with at least one, `run` never fails for want of a thread.
    /// Throws `std::system_error` when they cannot be had.
    explicit ThreadPool(std::size_t maximumThreads, std::chrono::milliseconds idleTime = std::chrono::seconds(1),
        std::size_t standingThreads = 0);
    ~ThreadPool() override;
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    /// After `shutDown` began, work is dropped unrun. Throws `std::system_error`, and drops the work, when there is
    /// no thread at all.
    void run(std::function<void()> work) override;
    void runTurn(std::function<void()> turn) override;

    /// Takes no more work but turns, drops what waits but turns, and waits at most `patience` for what runs. True
    /// when nothing is left running; otherwise threads are stuck and the process must end without running
    /// destructors.
    [[nodiscard]] bool shutDown(std::chrono::milliseconds patience);

    /// Waits at most `patience` until nothing runs and nothing waits; work that comes later is another matter.
    [[nodiscard]] bool waitUntilIdle(std::chrono::milliseconds patience);

    /// Pieces of work that run now; one that has been abandoned counts until it returns.
    [[nodiscard]] std::size_t busyThreads() const;

private:
    struct State;
    struct Work;
    void submit(Work work);
    [[nodiscard]] bool hire(Work& work);
    void startThread();

    std::shared_ptr<State> state_;
};

} // namespace kestrin
