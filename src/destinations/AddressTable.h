#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kestrin {

/// True when `inet_pton` reads the text as an IPv4 or an IPv6 address. Brackets, zones, blanks, shortened forms
/// such as "127.1" and plain integers are no addresses here: what they resolve to is judged after the resolution.
[[nodiscard]] bool isNumericAddress(std::string_view host);

/// True for a numeric address that is neither private nor local nor reserved. An IPv4-mapped IPv6 address is judged
/// as the IPv4 address inside. Anything that is no numeric address is not public.
[[nodiscard]] bool isPublicAddress(std::string_view text);

/// The verdict on a name resolution: it succeeded, gave something, and every address it gave is public. One private
/// address among public ones condemns all, because the connection could go to any of them.
[[nodiscard]] bool allAddressesPublic(bool resolved, std::span<const std::string> addresses);

} // namespace kestrin
