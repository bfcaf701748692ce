#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin {

/// A text from outside made fit to stand in a sentence or a label: control characters and line breaks become
/// blanks, and what is longer than `maximumBytes` is cut between two letters and ends in "…". UTF-8 that was valid
/// stays valid. Any thread.
[[nodiscard]] std::string shortenedForDisplay(std::string_view text, std::size_t maximumBytes);

} // namespace kestrin
