#pragma once

#include <string_view>

namespace kestrin {

/// Said of a system that takes no bytes and gives no reason, where no message of its own is asked for.
inline constexpr std::string_view diskTookNoData = "The disk took no data.";

/// Writes every byte, in as many writes as the system takes. Throws `POSIXError`, or `AtomicStateFileError` with
/// the message given when the system takes nothing.
void writeAll(std::string_view data, int descriptor, std::string_view message);

} // namespace kestrin
