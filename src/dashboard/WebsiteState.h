#pragma once

#include "content/StateColor.h"
#include "state/SiteSnapshot.h"

#include <string>

namespace kestrin {

/// The badge of a website: "DISABLED", "NO DATA", "UP" or "DOWN".
struct WebsiteState {
    std::string badge;
    StateColor color = StateColor::secondary;

    bool operator==(const WebsiteState&) const = default;
};

[[nodiscard]] WebsiteState stateOf(const SiteSnapshot& snapshot);

} // namespace kestrin
