#include "probing/RedirectTarget.h"

#include "destinations/URLReference.h"
#include "probing/SecureHTTPError.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace kestrin {

WebURL redirectTarget(const WebURL& base, const HTTPHopResponse& response) {
    const auto& locations = response.locations;
    const bool agree = !locations.empty() &&
                       std::ranges::all_of(locations, [&](const auto& text) { return text == locations.front(); });
    std::optional<WebURL> target;
    if (agree) target = resolveReference(base, locations.front());
    if (!target) throw SecureHTTPError::blockedRedirect("missing destination URL");
    return std::move(*target);
}

} // namespace kestrin
