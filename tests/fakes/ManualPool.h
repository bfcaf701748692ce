#pragma once

#include "tasks/BlockingPool.h"

#include <cstddef>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace kestrin {

/// A pool whose work runs, on the test's thread, only when the test finishes it.
class ManualPool : public BlockingPool {
public:
    bool refuses = false; ///< as a pool does that cannot have a thread

    void run(std::function<void()> work) override {
        if (refuses) throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        const std::lock_guard guard(mutex_);
        work_.push_back(std::move(work));
    }

    /// Pieces that were handed over and have not been finished.
    [[nodiscard]] std::size_t waiting() const {
        const std::lock_guard guard(mutex_);
        return work_.size();
    }

    /// Runs the piece at `index` among those that wait, to its end.
    void finish(std::size_t index = 0) {
        std::function<void()> work;
        {
            const std::lock_guard guard(mutex_);
            if (index >= work_.size()) throw std::out_of_range("no such work waits in the pool");
            work = std::move(work_[index]);
            work_.erase(work_.begin() + static_cast<std::ptrdiff_t>(index));
        }
        work();
    }

    /// Forgets all work without running it, as a pool does that was shut down.
    void dropAll() {
        std::vector<std::function<void()>> dropped;
        const std::lock_guard guard(mutex_);
        dropped.swap(work_);
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::function<void()>> work_;
};

} // namespace kestrin
