#pragma once

#include <functional>

namespace kestrin {

/// Threads for work that blocks. `run` may be called from any thread and never runs the work inside itself; pieces
/// of work run in parallel and in no set order. A pool that ends destroys unrun what still waits, outside its own
/// locks: whoever waits for that work is resumed.
class BlockingPool {
public:
    virtual ~BlockingPool() = default;
    virtual void run(std::function<void()> work) = 0;
};

} // namespace kestrin
