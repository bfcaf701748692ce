#pragma once

#include "tasks/Executor.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <utility>

namespace kestrin {

/// An executor that runs only when the test says so. Posting may come from any thread.
class ManualExecutor : public Executor {
public:
    void post(std::function<void()> work) noexcept override {
        const std::lock_guard guard(mutex_);
        queue_.push_back(std::move(work));
    }

    /// Runs the next piece of work; false when there is none.
    bool runOne() {
        std::function<void()> work;
        {
            const std::lock_guard guard(mutex_);
            if (queue_.empty()) return false;
            work = std::move(queue_.front());
            queue_.pop_front();
        }
        runAs(this, work);
        return true;
    }

    /// Runs until nothing is left, what the work itself posts included. Gives the number of pieces run.
    std::size_t runUntilIdle() {
        std::size_t count = 0;
        while (runOne())
            ++count;
        return count;
    }

    [[nodiscard]] std::size_t waiting() const {
        const std::lock_guard guard(mutex_);
        return queue_.size();
    }

private:
    mutable std::mutex mutex_;
    std::deque<std::function<void()>> queue_;
};

} // namespace kestrin
