#pragma once

#include "model/WebURL.h"

#include <optional>
#include <string_view>

namespace kestrin {

/// The URL that `location` names when it is met at `base`, by RFC 3986 section 5.2 with dot segments removed: what
/// a redirect leads to. The base's own fragment is not carried over. Nothing is returned when the location, or what
/// it leads to, is no URL that `splitURL` accepts; the text of the result is newly composed. Any thread.
[[nodiscard]] std::optional<WebURL> resolveReference(const WebURL& base, std::string_view location);

} // namespace kestrin
