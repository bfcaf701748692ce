#include "state/ParallelLoop.h"

#include <array>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

namespace kestrin {

namespace {

using Action = std::function<void(std::size_t index, const std::stop_token& stop)>;

/// What the threads of one loop share.
class ParallelLoop {
public:
    ParallelLoop(std::size_t count, const Action& action) : count_(count), action_(action) {}

    /// Takes one index after the other until none is left.
    void work(std::size_t worker) {
        while (const auto index = next(worker)) {
            try {
                action_(*index, workers_[worker].stop.get_token());
            } catch (...) {
                fail(*index, std::current_exception());
            }
        }
    }

    void requestStop() {
        for (Worker& worker : workers_)
            worker.stop.request_stop();
    }

    /// Once all work has ended.
    void throwFirstError() const {
        if (error_) std::rethrow_exception(error_);
    }

private:
    struct Worker {
        std::stop_source stop;
        std::size_t index = 0; ///< the latest it took
    };

    std::optional<std::size_t> next(std::size_t worker) {
        const std::scoped_lock lock(mutex_);
        if (next_ >= count_) return std::nullopt;
        return workers_[worker].index = next_++;
    }

    void fail(std::size_t index, std::exception_ptr error) {
        const std::scoped_lock lock(mutex_);
        next_ = count_;
        if (error_ && failedIndex_ < index) return;
        failedIndex_ = index;
        error_ = std::move(error);
        // What was begun before goes on, for it may fail as well and then comes first.
        for (Worker& worker : workers_)
            if (worker.index > index) worker.stop.request_stop();
    }

    const std::size_t count_;
    const Action& action_;
    std::array<Worker, 2> workers_;
    std::mutex mutex_; ///< guards what follows and the workers' indices
    std::size_t next_ = 0;
    std::size_t failedIndex_ = 0;
    std::exception_ptr error_;
};

/// No thread when the system gives none.
std::jthread secondThread(ParallelLoop& loop) {
    try {
        return std::jthread([&loop] { loop.work(1); });
    } catch (const std::system_error&) {
        return {};
    }
}

} // namespace

void forEachInParallel(std::size_t count, const std::stop_token& stop, const Action& action) {
    ParallelLoop loop(count, action);
    const std::stop_callback passOn(stop, [&loop] { loop.requestStop(); });
    {
        const std::jthread second = count > 1 ? secondThread(loop) : std::jthread();
        loop.work(0);
    }
    loop.throwFirstError();
}

} // namespace kestrin
