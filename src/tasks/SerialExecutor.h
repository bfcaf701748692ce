#pragma once

#include "tasks/BlockingPool.h"
#include "tasks/Executor.h"

#include <memory>

namespace kestrin {

/// A serial owner of its own without a thread of its own: what is posted runs in order on the pool's threads, which
/// are asked for only while there is something to run. Any thread. If the pool cannot start
/// a thread, work waits until the next post; a pool with a standing thread always has one.
class SerialExecutor : public Executor {
public:
    explicit SerialExecutor(BlockingPool& pool);
    ~SerialExecutor() override;
    SerialExecutor(const SerialExecutor&) = delete;
    SerialExecutor& operator=(const SerialExecutor&) = delete;

    void post(std::function<void()> work) noexcept override;

private:
    struct Queue;
    std::shared_ptr<Queue> queue_;
    BlockingPool& pool_;
};

} // namespace kestrin
