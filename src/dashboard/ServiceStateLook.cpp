#include "dashboard/ServiceStateLook.h"

#include <algorithm>
#include <utility>

namespace kestrin {

ServiceStateLook lookOf(ProviderState state) {
    switch (state) {
    case ProviderState::operational:
        return {"checkmark.circle.fill", StateColor::green};
    case ProviderState::degraded:
        return {"exclamationmark.triangle.fill", StateColor::orange};
    case ProviderState::outage:
        return {"xmark.octagon.fill", StateColor::red};
    case ProviderState::maintenance:
        return {"wrench.and.screwdriver.fill", StateColor::blue};
    case ProviderState::unknown:
        return {"questionmark.circle.fill", StateColor::secondary};
    }
    std::unreachable();
}

ProviderState currentState(const ProviderSnapshot& snapshot) {
    const auto& checks = snapshot.history.recentChecks;
    return checks.empty() ? ProviderState::unknown : checks.back().state;
}

ProviderState overallState(std::span<const ProviderSnapshot> snapshots) {
    if (snapshots.empty()) return ProviderState::unknown;
    for (const ProviderState state :
        {ProviderState::outage, ProviderState::degraded, ProviderState::unknown, ProviderState::maintenance})
        if (std::ranges::find(snapshots, state, currentState) != snapshots.end()) return state;
    return ProviderState::operational;
}

} // namespace kestrin
