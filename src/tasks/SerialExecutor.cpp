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

SerialExecutor::SerialExecutor(BlockingPool& pool) : queue_(std::make_shared<Queue>(this)), pool_(pool) {}
SerialExecutor::~SerialExecutor() = default;

void SerialExecutor::post(std::function<void()> work) noexcept {
    const std::lock_guard guard(queue_->mutex);
    queue_->work.push_back(std::move(work));
    if (queue_->running) return;
    try {
        pool_.runTurn([queue = queue_] { queue->drain(); });
        queue_->running = true;
    } catch (const std::exception&) {
        // No thread could be had. The work keeps its place, and the next post asks again.
    }
}

} // namespace kestrin
