#include "services/KnownServices.h"

#include "destinations/CustomProviderURLPolicy.h"
#include "services/CustomProviderStoreError.h"
#include "services/IncludedServices.h"

#include <array>
#include <string>
#include <utility>

namespace kestrin {

namespace {

struct IncludedService {
    const char* id;
    const char* name;
    const char* page;
};

constexpr std::array<IncludedService, 2> includedTable = {{
    {"openai", "OpenAI", "https://status.openai.com/"},
    {"claude", "Claude", "https://status.claude.com/"},
}};

constexpr std::array<const char*, 2> statuspagePaths = {"api/v2/status.json", "api/v2/summary.json"};

ProviderDefinition definitionOf(const IncludedService& row) {
    ProviderDefinition service;
    service.id = row.id;
    service.name = row.name;
    service.adapter = {"statuspage-v2", 1};
    for (const char* path : statuspagePaths)
        service.statusURLs.push_back(validatedCustomProviderURL(std::string(row.page) + path));
    service.publicStatusURL = validatedCustomProviderURL(row.page);
    service.source = ProviderSource::bundledOfficial;
    return service;
}

} // namespace

std::vector<std::string> includedServiceIDs() {
    std::vector<std::string> ids;
    for (const IncludedService& row : includedTable)
        ids.emplace_back(row.id);
    return ids;
}

KnownServices::KnownServices() {
    for (const IncludedService& row : includedTable)
        included_.push_back(definitionOf(row));
}

ProviderDefinition KnownServices::definition(const CustomProviderDefinition&) const {
    throw CustomProviderStoreError("This status-service adapter needs a newer Kestrin version.");
}

} // namespace kestrin
