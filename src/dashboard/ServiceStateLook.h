#pragma once

#include "content/StateColor.h"
#include "model/ProviderState.h"
#include "state/ProviderSnapshot.h"

#include <span>
#include <string>

namespace kestrin {

/// How a published state looks; its word is `title`.
struct ServiceStateLook {
    std::string symbol;
    StateColor color = StateColor::secondary;

    bool operator==(const ServiceStateLook&) const = default;
};
[[nodiscard]] ServiceStateLook lookOf(ProviderState state);

/// The state of the last record, or unknown without one.
[[nodiscard]] ProviderState currentState(const ProviderSnapshot& snapshot);

/// The state of all services together: the worst that is certain, where an unknown one outweighs maintenance.
/// Unknown when there are none.
[[nodiscard]] ProviderState overallState(std::span<const ProviderSnapshot> snapshots);

} // namespace kestrin
