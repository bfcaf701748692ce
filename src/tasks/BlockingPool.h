#pragma once

#include <functional>
#include <utility>

namespace kestrin {

/// Threads for work that blocks. Work may be submitted from any thread and never runs inside the call; pieces of
/// work run in parallel and in no set order.
class BlockingPool {
public:
    virtual ~BlockingPool() = default;
    /// A pool that ends destroys unrun what still waits, outside its own locks: whoever waits for it is resumed.
    virtual void run(std::function<void()> work) = 0;
    /// For an executor that lives on this pool: its turns run also while the pool ends, since only they can bring
    /// the tasks on it to their end.
    virtual void runTurn(std::function<void()> turn) { run(std::move(turn)); }
};

} // namespace kestrin
