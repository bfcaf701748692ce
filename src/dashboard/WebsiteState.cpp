#include "dashboard/WebsiteState.h"

namespace kestrin {

WebsiteState stateOf(const SiteSnapshot& snapshot) {
    if (!snapshot.site.enabled) return {"DISABLED", StateColor::secondary};
    if (snapshot.history.recentChecks.empty()) return {"NO DATA", StateColor::secondary};
    if (snapshot.history.recentChecks.back().up) return {"UP", StateColor::green};
    return {"DOWN", StateColor::red};
}

} // namespace kestrin
