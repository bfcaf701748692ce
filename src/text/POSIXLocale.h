#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// The name by which ICU knows a locale of the C library: without the encoding, and with a script for the modifiers
/// that name one. "en_GB.UTF-8" gives "en_GB" and "sr_RS@latin" gives "sr_Latn_RS". ICU's own keywords stay, as in
/// "en_US@hours=h23". ICU would otherwise look for a region "GB.UTF-8", and find only the language. Any thread.
[[nodiscard]] std::string icuLocaleName(std::string_view posixName);

} // namespace kestrin
