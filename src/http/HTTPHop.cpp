#include "http/HTTPHop.h"

#include <algorithm>

namespace kestrin {

bool HTTPHopResponse::isRedirect() const {
    const bool redirects = status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
    return redirects &&
           std::any_of(locations.begin(), locations.end(), [](const auto& text) { return !text.empty(); });
}

} // namespace kestrin
