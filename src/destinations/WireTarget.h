#pragma once

#include "model/WebURL.h"

#include <string>

namespace kestrin {

/// Path and query as a request line carries them; never the fragment, and "/" for an empty path. What a request
/// line cannot hold (letters outside ASCII, blanks, controls, quotes and the like, a "%" that begins no code) is
/// percent-encoded; existing codes, brackets and dot segments stay as typed.
[[nodiscard]] std::string wireTarget(const WebURL& url);

/// The host as a URL or a "Host" header holds it: an IPv6 address in brackets, any name as it is.
[[nodiscard]] std::string asciiHostForWire(const WebURL& url);

} // namespace kestrin
