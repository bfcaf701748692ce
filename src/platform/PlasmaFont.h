#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// The value of "font" in the group "[General]" of a "kdeglobals", the last if there are more. Any thread.
[[nodiscard]] std::optional<std::string> fontInKdeglobals(std::string_view content);

/// The same from the user's "kdeglobals" or else from those that the system and a look bring along. Reads files, at
/// most 1 MB of each.
[[nodiscard]] std::optional<std::string> plasmaFont();

} // namespace kestrin
