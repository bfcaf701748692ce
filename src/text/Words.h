#pragma once

#include <string_view>
#include <vector>

namespace kestrin {

/// The pieces of a text between runs of white space, by Unicode's property of that name; none of them is empty.
/// Views the text given. Bytes that are no UTF-8 belong to the piece in which they stand. Any thread.
[[nodiscard]] std::vector<std::string_view> wordsOf(std::string_view text);

} // namespace kestrin
