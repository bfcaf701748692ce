#include "state/SiteConfigurationCoding.h"

#include "json/JSONReader.h"

#include <string>
#include <utility>

namespace kestrin {

namespace {

constexpr const char* sitesKey = "sites";
constexpr const char* activeSiteIDKey = "active_site_id";
constexpr const char* intervalSecondsKey = "interval_seconds";
constexpr const char* providerStatusKey = "provider_status";
constexpr const char* providerIDsKey = "provider_ids";
constexpr const char* idKey = "id";
constexpr const char* nameKey = "name";
constexpr const char* urlKey = "url";
constexpr const char* enabledKey = "enabled";

SiteDefinition decodeSite(const JSONReader& reader) {
    return {.id = reader.string(idKey),
        .name = reader.string(nameKey),
        .url = reader.string(urlKey),
        .enabled = reader.optionalBoolean(enabledKey).value_or(true)};
}

JSONValue encodeSite(const SiteDefinition& site) {
    return JSONValue::object(
        {{idKey, site.id}, {nameKey, site.name}, {urlKey, site.url}, {enabledKey, site.enabled}});
}

} // namespace

SiteConfiguration decodeSiteConfiguration(const JSONValue& value) {
    const JSONReader reader(value);
    SiteConfiguration configuration;
    for (const JSONReader& site : reader.objects(sitesKey))
        configuration.sites.push_back(decodeSite(site));
    configuration.activeSiteID = reader.optionalString(activeSiteIDKey);
    if (const auto interval = reader.optionalSignedInteger(intervalSecondsKey))
        configuration.intervalSeconds = *interval;
    if (const auto status = reader.optionalObject(providerStatusKey))
        configuration.providerStatus = {
            .enabled = status->boolean(enabledKey), .providerIDs = status->strings(providerIDsKey)};
    return configuration;
}

JSONValue encodeSiteConfiguration(const SiteConfiguration& configuration) {
    JSONValue::Array sites;
    for (const SiteDefinition& site : configuration.sites)
        sites.push_back(encodeSite(site));
    JSONValue value = JSONValue::object({{sitesKey, std::move(sites)}});
    if (configuration.activeSiteID) value.add(activeSiteIDKey, *configuration.activeSiteID);
    value.add(intervalSecondsKey, configuration.intervalSeconds);
    value.add(
        providerStatusKey, JSONValue::object({{enabledKey, configuration.providerStatus.enabled},
                               {providerIDsKey, JSONValue::strings(configuration.providerStatus.providerIDs)}}));
    return value;
}

} // namespace kestrin
