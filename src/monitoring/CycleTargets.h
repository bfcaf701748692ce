#pragma once

#include "model/ProviderDefinition.h"
#include "model/SiteConfiguration.h"

#include <vector>

namespace kestrin {

/// What one cycle checks.
struct CycleTargets {
    std::vector<SiteDefinition> sites;
    std::vector<ProviderDefinition> services;

    [[nodiscard]] bool empty() const { return sites.empty() && services.empty(); }
    bool operator==(const CycleTargets&) const = default;
};

} // namespace kestrin
