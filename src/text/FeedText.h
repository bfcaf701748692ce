#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin {

/// A text from a status feed made fit to be shown and stored as a name or a summary: on one line, with single
/// blanks only, none of them at either end, and nothing invisible that could turn or hide what stands beside it.
/// `limit` counts what a reader takes for characters (grapheme clusters), each of which may be many bytes. Control,
/// format and unassigned characters become blanks. Bytes that are no UTF-8 count as U+FFFD, so the result is valid
/// UTF-8 whatever came in. Cleaning a cleaned text changes nothing. Any thread.
[[nodiscard]] std::string cleanFeedText(std::string_view text, std::size_t limit);

} // namespace kestrin
