#include "tasks/SerialExecutor.h"

#include <deque>
#include <exception>
#include <mutex>
#include <utility>

namespace kestrin {

struct SerialExecutor::Queue {
    explicit Queue(const SerialExecutor* owner) : executor(owner) {}

    const SerialExecutor* const executor; ///< a name alone: it may be gone
    std::mutex mutex;
    std::deque<std::function<void()>> work;
    bool running = false;

    /// Runs until nothing is left; then the pool's thread goes back.
    void drain() {
        while (true) {
            std::function<void()> next;
            {
                const std::lock_guard guard(mutex);
                if (work.empty()) {
                    running = false;
                    return;
                }
                next = std::move(work.front());
                work.pop_front();
            }
            runAs(executor, next);
        }
    }
};

/// What the pool holds. The queue is run all the same when the pool drops it.
class SerialExecutor::Turn {
public:
    explicit Turn(std::shared_ptr<Queue> queue) : queue_(std::move(queue)) {}
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() {
        if (!hasRun_) queue_->drain();
    }
    void run() {
        hasRun_ = true;
        queue_->drain();
    }

private:
    std::shared_ptr<Queue> queue_;
    bool hasRun_ = false;
};

SerialExecutor::SerialExecutor(BlockingPool& pool) : queue_(std::make_shared<Queue>(this)), pool_(pool) {}
SerialExecutor::~SerialExecutor() = default;

void SerialExecutor::post(std::function<void()> work) noexcept {
    {
        const std::lock_guard guard(queue_->mutex);
        queue_->work.push_back(std::move(work));
        if (std::exchange(queue_->running, true)) return;
    }
    auto turn = std::make_shared<Turn>(queue_);
    try {
        pool_.run([turn = std::move(turn)] { turn->run(); });
    } catch (const std::exception&) {
        // No thread could be had. The turn was dropped on the way here, so the work has run and nothing is lost.
    }
}

} // namespace kestrin
