#pragma once

#include <string_view>

namespace kestrin {

/// True when the text holds nothing that two readers of a URL could take differently: it is well-formed UTF-8
/// without control characters (line breaks, tabs and zero bytes among them) and without a backslash, which browsers
/// take for a slash and others for a letter.
[[nodiscard]] bool hasOnlyURLCharacters(std::string_view text);

} // namespace kestrin
