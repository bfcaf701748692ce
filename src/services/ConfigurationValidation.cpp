#include "services/ConfigurationValidation.h"

#include "services/IncludedServices.h"
#include "state/SiteValidation.h"
#include "state/StateErrors.h"

#include <algorithm>
#include <set>
#include <string>

namespace kestrin {

namespace {

void require(bool holds, const char* message) {
    if (!holds) throw StateValidationError(message);
}

void validateSites(const SiteConfiguration& configuration) {
    require(!configuration.sites.empty(), "The selected Kestrin configuration contains no websites.");
    std::set<std::string> ids;
    for (const SiteDefinition& site : configuration.sites)
        ids.insert(site.id);
    require(ids.size() == configuration.sites.size(),
        "The selected Kestrin configuration contains duplicate website identifiers.");
    for (const SiteDefinition& site : configuration.sites)
        validateSiteDefinition(site);
    require(!configuration.activeSiteID || ids.contains(*configuration.activeSiteID),
        "The selected Kestrin configuration refers to an unknown active website.");
}

void validateServiceIDs(const std::vector<std::string>& ids) {
    require(std::set<std::string>(ids.begin(), ids.end()).size() == ids.size(),
        "The selected Kestrin configuration contains duplicate provider identifiers.");
    const std::vector<std::string> included = includedServiceIDs();
    require(std::ranges::all_of(ids, [&](const std::string& id) { return std::ranges::count(included, id) > 0; }),
        "The selected Kestrin configuration contains an unsupported provider identifier.");
}

} // namespace

void validateConfiguration(const SiteConfiguration& configuration,
    const std::optional<std::vector<CustomProviderDefinition>>& customProviders, bool customProviderReadFailed,
    bool requireSupportedInterval, const CustomProviderValidating& customValidation) {
    validateSites(configuration);
    require(!requireSupportedInterval ||
                std::ranges::count(supportedIntervalSeconds, configuration.intervalSeconds) > 0,
        "Choose a supported check interval in the download version before importing this data.");
    const ProviderStatusConfiguration& status = configuration.providerStatus;
    validateServiceIDs(status.providerIDs);
    if (customProviders) {
        customValidation.validate(*customProviders);
        if (std::ranges::any_of(*customProviders, &CustomProviderDefinition::enabled)) return;
    }
    require(!status.enabled || !status.providerIDs.empty() || customProviderReadFailed,
        "The selected Kestrin configuration enables Service Status without selecting a service.");
}

} // namespace kestrin
