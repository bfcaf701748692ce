#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// The form in which hosts are compared: ASCII letters in lower case, "." trimmed from both ends.
[[nodiscard]] std::string normalizedHost(std::string_view host);

/// True for "localhost" and for names below ".localhost" and ".local", in any letter case and with dots at the
/// ends. Nothing else counts as local: there is no list of internal top-level names.
[[nodiscard]] bool isLocalHostName(std::string_view host);

} // namespace kestrin
