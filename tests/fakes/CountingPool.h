#pragma once

#include "tasks/BlockingPool.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <utility>

namespace kestrin {

/// Hands work on to a real pool and knows when nothing of it is left, so that a test ends only after everything
/// that it set going has ended.
class CountingPool : public BlockingPool {
public:
    explicit CountingPool(BlockingPool& real) : real_(real) {}
    ~CountingPool() override { waitUntilIdle(); }

    void run(std::function<void()> work) override {
        {
            const std::lock_guard guard(mutex_);
            ++unfinished_;
        }
        real_.run([this, work = std::move(work)]() mutable {
            work();
            work = nullptr;
            const std::lock_guard guard(mutex_);
            if (--unfinished_ == 0) idle_.notify_all();
        });
    }

    void waitUntilIdle() {
        std::unique_lock guard(mutex_);
        idle_.wait(guard, [this] { return unfinished_ == 0; });
    }

private:
    BlockingPool& real_;
    std::mutex mutex_;
    std::condition_variable idle_;
    std::size_t unfinished_ = 0;
};

} // namespace kestrin
