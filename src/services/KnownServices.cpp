#include "services/KnownServices.h"

#include "destinations/CustomProviderURLPolicy.h"
#include "services/CustomProviderStoreError.h"
#include "services/IncludedServices.h"
#include "services/ProviderAdapters.h"
#include "services/ServiceTable.h"

#include <string>

namespace kestrin {

namespace {

ProviderDefinition definitionOf(const IncludedServiceRow& row) {
    ProviderDefinition service;
    service.id = row.id;
    service.name = row.name;
    service.adapter = {"statuspage-v2", 1};
    service.publicStatusURL = validatedCustomProviderURL(row.page);
    service.statusURLs = statusEndpoints(service.publicStatusURL, service.adapter.id, service.adapter.version);
    service.source = ProviderSource::bundledOfficial;
    return service;
}

std::vector<ProviderDefinition> allDefinitions() {
    std::vector<ProviderDefinition> services;
    services.reserve(includedServiceTable.size());
    for (const IncludedServiceRow& row : includedServiceTable)
        services.push_back(definitionOf(row));
    return services;
}

} // namespace

std::vector<std::string> includedServiceIDs() {
    std::vector<std::string> ids;
    ids.reserve(includedServiceTable.size());
    for (const IncludedServiceRow& row : includedServiceTable)
        ids.emplace_back(row.id);
    return ids;
}

const std::vector<ProviderDefinition>& bundledProviderDefinitions() {
    static const std::vector<ProviderDefinition> services = allDefinitions();
    return services;
}

ProviderDefinition KnownServices::definition(const CustomProviderDefinition& stored) const {
    ProviderDefinition service;
    service.publicStatusURL = validatedCustomProviderURL(stored.statusPageURL);
    service.adapter = {stored.adapter, stored.adapterVersion};
    service.statusURLs = statusEndpoints(service.publicStatusURL, stored.adapter, stored.adapterVersion);
    if (!isSupportedProviderAdapter(stored.adapter, stored.adapterVersion))
        throw CustomProviderStoreError("This status-service adapter needs a newer Kestrin version.");
    service.id = stored.id;
    service.name = stored.name;
    service.source = ProviderSource::custom;
    return service;
}

} // namespace kestrin
