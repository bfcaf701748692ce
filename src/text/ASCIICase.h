#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// The text with A to Z in lower case and every other byte as it was, whatever the locale. Any thread.
[[nodiscard]] std::string asciiLowercase(std::string_view text);

} // namespace kestrin
