#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin {

/// Prepares foreign text for a sentence or a label. Control characters and line breaks become spaces. A text longer
/// than `maximumBytes` is cut between two characters and ends in "…". Valid UTF-8 stays valid. Any thread.
[[nodiscard]] std::string shortenedForDisplay(std::string_view text, std::size_t maximumBytes);

} // namespace kestrin
