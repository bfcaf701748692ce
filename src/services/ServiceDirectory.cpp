#include "services/ServiceDirectory.h"

#include <algorithm>

namespace kestrin {

std::vector<ProviderDefinition> servicesOfRun(const ServiceDirectory& directory,
    const std::vector<std::string>& selectedIDs, const CustomProviderConfiguration& added) {
    std::vector<ProviderDefinition> services;
    for (const ProviderDefinition& service : directory.includedServices())
        if (std::ranges::find(selectedIDs, service.id) != selectedIDs.end()) services.push_back(service);
    for (const CustomProviderDefinition& stored : added.providers)
        if (stored.enabled) services.push_back(directory.definition(stored));
    return services;
}

} // namespace kestrin
