#pragma once

#include <cstddef>
#include <functional>
#include <stop_token>

namespace kestrin {

/// Calls `action` with every index below `count`, begun in order, on the calling thread and one more; on the
/// calling thread alone when the system gives no other. Both have ended when the call ends. The first error in the
/// order of the indices is thrown, as if they had been taken one by one: after a failure nothing further is begun,
/// and what runs at a later index gets a stop. `stop` is passed on to whatever runs.
void forEachInParallel(std::size_t count, const std::stop_token& stop,
    const std::function<void(std::size_t index, const std::stop_token& stop)>& action);

} // namespace kestrin
