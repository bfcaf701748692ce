#pragma once

#include <string_view>

namespace kestrin {

/// The text without white space and line breaks at either end: the Unicode separators (categories Zs, Zl and Zp),
/// tab, U+000A to U+000D and U+0085. Bytes that are no UTF-8 end the trimming. Views the text given. Any thread.
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace kestrin
