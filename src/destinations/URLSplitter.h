#pragma once

#include "model/WebURL.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// Takes an absolute URL "scheme://authority..." apart, strictly: whatever one reader could take for another host
/// is refused rather than repaired. Path, query and fragment stay as typed, with blanks, brackets and letters of
/// any script. The host comes out as it is to be judged and contacted. An empty port counts as none. Nothing is
/// returned for: no scheme or no host, control characters, a backslash or bad UTF-8 anywhere, a second "@", a
/// blank, "%" or another sign that no host name has, a literal in brackets that is no IPv6 address (a zone makes it
/// none), port 0 or above 65535, a name that cannot be converted. Any thread.
[[nodiscard]] std::optional<WebURL> splitURL(std::string_view text);

/// Puts the parts together again, `text` aside. Gives back the text that was split, but for a converted host, which
/// appears converted, and a port, which appears without leading zeros and, when empty, without its colon.
[[nodiscard]] std::string joinURL(const WebURL& url);

} // namespace kestrin
