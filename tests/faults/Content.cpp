#include "faults/Content.h"

#include "services/CustomProviderCoding.h"
#include "state/HistoryLine.h"
#include "state/SiteConfigurationCoding.h"
#include "json/JSONWriter.h"

namespace kestrin {

SiteConfiguration formerConfiguration() {
    return {.sites = {{.id = "site-1", .name = "Former", .url = "https://former.example/"}},
        .activeSiteID = "site-1",
        .intervalSeconds = 300,
        .providerStatus = {}};
}

SiteConfiguration newConfiguration() {
    SiteConfiguration configuration = formerConfiguration();
    configuration.sites[0].name = "New";
    configuration.sites.push_back({.id = "site-2", .name = "Second", .url = "https://second.example/"});
    configuration.intervalSeconds = 600;
    return configuration;
}

CustomProviderConfiguration formerAddedServices() {
    return {.schemaVersion = 1,
        .providers = {{.id = "provider-1",
            .name = "Former",
            .statusPageURL = "https://status.former.example/",
            .adapter = "statuspage-v2"}}};
}

CustomProviderConfiguration newAddedServices() {
    CustomProviderConfiguration added = formerAddedServices();
    added.schemaVersion = 2;
    added.providers[0].enabled = false;
    added.providers.push_back({.id = "provider-2",
        .name = "Second",
        .statusPageURL = "https://status.second.example/",
        .adapter = "instatus-summary"});
    return added;
}

CheckRecord siteCheck(const std::string& timestamp) {
    return {.timestamp = timestamp,
        .siteID = "site-1",
        .url = "https://former.example/",
        .dnsOK = true,
        .ips = {"192.0.2.1"},
        .httpStatus = 200,
        .elapsedMS = 12,
        .up = true,
        .error = std::nullopt};
}

ProviderCheckRecord serviceCheck(const std::string& timestamp) {
    return {.timestamp = timestamp,
        .providerID = "claude",
        .endpoint = "https://status.example/",
        .httpStatus = 200,
        .elapsedMS = 12,
        .state = ProviderState::operational,
        .summary = "All well",
        .officialUpdatedAt = std::nullopt,
        .error = std::nullopt,
        .failureCategory = std::nullopt};
}

std::string fileOf(const SiteConfiguration& configuration) {
    return writePretty(encodeSiteConfiguration(configuration));
}

std::string fileOf(const CustomProviderConfiguration& configuration) {
    return writePretty(encodeCustomProviders(configuration));
}

std::string lineOf(const CheckRecord& record) {
    return historyLine(record) + "\n";
}

std::string lineOf(const ProviderCheckRecord& record) {
    return historyLine(record) + "\n";
}

} // namespace kestrin
