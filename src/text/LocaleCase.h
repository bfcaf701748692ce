#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// The text in lower case as a locale writes it: "I" becomes "ı" in Turkish. The name is as POSIX gives it
/// ("tr_TR.UTF-8"); without one it is the user's own locale that counts. Bytes that are no UTF-8 become U+FFFD. Any
/// thread.
[[nodiscard]] std::string localeLowercase(
    std::string_view text, const std::optional<std::string>& localeName = std::nullopt);

} // namespace kestrin
