#include "services/CustomProviderValidation.h"

#include "destinations/CustomProviderURLPolicy.h"
#include "destinations/LocalHostName.h"
#include "model/WebURL.h"
#include "services/CustomProviderStoreError.h"
#include "services/KnownServices.h"
#include "services/ProviderAdapters.h"
#include "text/FeedText.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

namespace kestrin {

namespace {

constexpr std::int64_t statuspageAlone = 1;
constexpr std::int64_t everyAdapter = 2;
constexpr std::size_t maximumNameCharacters = 80;

void require(bool holds, const char* message) {
    if (!holds) throw CustomProviderStoreError(message);
}

bool isStatuspage(const CustomProviderDefinition& definition) {
    return definition.adapter == "statuspage-v2" && definition.adapterVersion == 1;
}

/// "provider-" and a number from 1 without leading zeros, of any length. It names a history file.
bool isIdentifier(std::string_view id) {
    constexpr std::string_view prefix = "provider-";
    if (!id.starts_with(prefix)) return false;
    id.remove_prefix(prefix.size());
    return !id.empty() && id.front() != '0' &&
           std::ranges::all_of(id, [](char sign) { return sign >= '0' && sign <= '9'; });
}

WebURL validatedPage(const std::string& text) {
    try {
        return validatedCustomProviderURL(text);
    } catch (const CustomProviderURLPolicy::ValidationError& error) {
        throw CustomProviderStoreError(error.message);
    }
}

/// What no further service may have. Begins with what the included services have.
class Taken {
public:
    Taken() {
        for (const ProviderDefinition& service : bundledProviderDefinitions()) {
            ids_.insert(service.id);
            hosts_.insert(normalizedHost(service.publicStatusURL.host));
        }
    }

    void add(const CustomProviderDefinition& definition) {
        require(isIdentifier(definition.id), "Kestrin refused an unsafe custom-provider identifier.");
        require(ids_.insert(definition.id).second, "Custom-provider identifiers must be unique.");
        require(isSupportedProviderAdapter(definition.adapter, definition.adapterVersion),
            "This status-service adapter needs a newer Kestrin version.");
        require(
            !definition.name.empty() && cleanFeedText(definition.name, maximumNameCharacters) == definition.name,
            "A custom-provider name is invalid or too long.");
        const WebURL page = validatedPage(definition.statusPageURL);
        require(!page.host.empty() && !statusEndpoints(page, definition.adapter, definition.adapterVersion).empty(),
            "Enter a complete public status page URL.");
        // Two paths of one host are the same service.
        require(hosts_.insert(normalizedHost(page.host)).second,
            "Each additional status service must use a unique host.");
    }

private:
    std::set<std::string> ids_;
    std::set<std::string> hosts_;
};

} // namespace

std::int64_t customProviderSchemaVersion(const std::vector<CustomProviderDefinition>& providers) {
    return std::ranges::all_of(providers, isStatuspage) ? statuspageAlone : everyAdapter;
}

void validateCustomProviders(const CustomProviderConfiguration& configuration) {
    const std::int64_t version = configuration.schemaVersion;
    require(version == statuspageAlone || version == everyAdapter,
        "This status-service format needs a newer Kestrin version.");
    require(version >= customProviderSchemaVersion(configuration.providers),
        "Kestrin refused mismatched status-service settings.");
    require(configuration.providers.size() <= maximumCustomProviders,
        "Kestrin refused an oversized custom-provider definition set.");
    Taken taken;
    for (const CustomProviderDefinition& definition : configuration.providers)
        taken.add(definition);
}

void CustomProviderValidation::validate(const std::vector<CustomProviderDefinition>& providers) const {
    validateCustomProviders({.schemaVersion = customProviderSchemaVersion(providers), .providers = providers});
}

} // namespace kestrin
