#pragma once

#include "tasks/BlockingPool.h"
#include "tasks/Executor.h"

#include <memory>

namespace kestrin {

/// A serial owner of its own without a thread of its own: what is posted runs in order on the pool's threads, which
/// are asked for only while there is something to run. Any thread. Where the pool has ended or has no thread to
/// give, the work runs on the thread that posts or drops it, inside `post` if need be: tasks that outlast their
/// pool still come to their end. So nobody posts while holding a lock that the work may want.
class SerialExecutor : public Executor {
public:
    explicit SerialExecutor(BlockingPool& pool);
    ~SerialExecutor() override;
    SerialExecutor(const SerialExecutor&) = delete;
    SerialExecutor& operator=(const SerialExecutor&) = delete;

    void post(std::function<void()> work) noexcept override;

private:
    struct Queue;
    class Turn;
    std::shared_ptr<Queue> queue_;
    BlockingPool& pool_;
};

} // namespace kestrin
