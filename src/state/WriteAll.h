#pragma once

#include <string_view>

namespace kestrin {

/// Writes every byte, in as many writes as the system takes. Throws `POSIXError`, or `AtomicStateFileError` with
/// the message given when the system takes nothing.
void writeAll(std::string_view data, int descriptor, std::string_view message);

} // namespace kestrin
