#include "tasks/SerialExecutor.h"

#include <deque>
#include <mutex>
#include <utility>

namespace kestrin {

struct SerialExecutor::Queue {
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
            next();
        }
    }
};

SerialExecutor::SerialExecutor(BlockingPool& pool) : queue_(std::make_shared<Queue>()), pool_(pool) {}
SerialExecutor::~SerialExecutor() = default;

void SerialExecutor::post(std::function<void()> work) {
    const std::lock_guard guard(queue_->mutex);
    queue_->work.push_back(std::move(work));
    if (queue_->running) return;
    try {
        pool_.run([queue = queue_] { queue->drain(); });
        queue_->running = true;
    } catch (...) {
        // Refused by the pool: the caller is told, and the next one asks again.
        queue_->work.pop_back();
        throw;
    }
}

} // namespace kestrin
