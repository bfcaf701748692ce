#pragma once

#include "http/CurlURL.h"
#include "http/HTTPHop.h"

namespace kestrin {

/// The request's destination for `CURLOPT_CURLU`, put together from its parts and read back: null when libcurl
/// would make anything else of scheme, host or port, or when target or headers could not go over the wire as they
/// stand. Only an IPv6 literal may be spelled anew, as long as it stays the same address.
[[nodiscard]] CurlURL curlDestination(const HTTPHopRequest& request);

} // namespace kestrin
