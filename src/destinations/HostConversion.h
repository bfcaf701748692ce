#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// Turns a host name with letters outside ASCII into the name that is looked up, by UTS 46: nontransitional, STD3
/// rules, bidirectional and joiner checks. Look-alikes of digits and dots become digits and dots, so the result has
/// to be judged, never the input. Nothing for a name that UTS 46 refuses or DNS cannot hold. Any thread.
[[nodiscard]] std::optional<std::string> asciiHost(std::string_view host);

} // namespace kestrin
