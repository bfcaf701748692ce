#pragma once

#include "model/CustomProviderConfiguration.h"
#include "model/SiteConfiguration.h"
#include "notifications/NotificationTargetContext.h"
#include "services/ServiceDirectory.h"
#include "state/ProviderSnapshot.h"
#include "state/SiteSnapshot.h"

#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace kestrin {

/// Whether a website's URL may be contacted: a public HTTPS destination as far as its text tells.
[[nodiscard]] bool isMonitorable(const SiteDefinition& site);

/// The enabled websites with a public HTTPS URL, in configuration order.
[[nodiscard]] std::vector<SiteDefinition> monitoredSites(const SiteConfiguration& configuration);

/// What the user is told of the first enabled website that may not be contacted; absent when all may.
[[nodiscard]] std::optional<std::string> configurationIssueOf(const SiteConfiguration& configuration);

/// The ids of the services that a run checks: the included ones selected and the added ones enabled.
[[nodiscard]] std::set<std::string> monitoredServiceIDs(const ServiceDirectory& directory,
    const ProviderStatusConfiguration& status, const CustomProviderConfiguration& added);

/// Everything that notifications are told of the present targets.
struct TargetSources {
    const SiteConfiguration& configuration;
    bool isSaved = true; ///< false on a first run, whose empty configuration nobody has saved
    const CustomProviderConfiguration& added;
    bool addedAreReadable = true;
    const ServiceDirectory& directory;
    std::span<const SiteSnapshot> sites;
    std::span<const ProviderSnapshot> services;
};
struct TargetDescription {
    std::vector<NotificationTargetContext> contexts; ///< websites first, then services
    NotificationTargetPolicy policy;
};
[[nodiscard]] TargetDescription describeTargets(const TargetSources& sources);

} // namespace kestrin
