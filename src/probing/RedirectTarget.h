#pragma once

#include "http/HTTPHop.h"
#include "model/WebURL.h"

namespace kestrin {

/// Where a response that `isRedirect` leads from `base`, not yet judged. Every `Location` must say the same: which
/// of two a reader follows is chance. Without one that leads to a URL, throws `SecureHTTPError` `blockedRedirect`.
[[nodiscard]] WebURL redirectTarget(const WebURL& base, const HTTPHopResponse& response);

} // namespace kestrin
