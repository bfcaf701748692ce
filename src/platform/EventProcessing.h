#pragma once

#include <chrono>
#include <functional>

namespace kestrin {

/// Lets the event loop of this thread go on, but for what the user does, until `isOver` holds or `patience` is
/// over. Asks again after each batch of events, so something must post an event when the answer changes. Returns
/// the last answer. For the end of the program, when the main loop has ended already.
[[nodiscard]] bool processEventsUntil(const std::function<bool()>& isOver, std::chrono::milliseconds patience);

} // namespace kestrin
