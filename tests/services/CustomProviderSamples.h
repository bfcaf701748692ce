#pragma once

#include "fakes/TemporaryDirectory.h"
#include "model/CustomProviderConfiguration.h"
#include "services/CustomProviderCoding.h"
#include "services/CustomProviderStore.h"
#include "json/JSONWriter.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace kestrin {

/// An acceptable Statuspage service on a host of its own.
inline CustomProviderDefinition addedService(int number) {
    const std::string n = std::to_string(number);
    return {.id = "provider-" + n,
        .name = "Service " + n,
        .statusPageURL = "https://status" + n + ".example.com/",
        .adapter = "statuspage-v2",
        .adapterVersion = 1,
        .enabled = true};
}

inline std::vector<CustomProviderDefinition> addedServices(int count) {
    std::vector<CustomProviderDefinition> services;
    for (int number = 1; number <= count; ++number)
        services.push_back(addedService(number));
    return services;
}

inline std::string fileOf(const CustomProviderConfiguration& configuration) {
    return writePretty(encodeCustomProviders(configuration));
}

/// A store whose clock stands still at 2026-01-31T09:05:00Z.
inline CustomProviderStore storeAt(const std::filesystem::path& root) {
    using namespace std::chrono_literals;
    return CustomProviderStore(
        root, [] { return std::chrono::sys_days(std::chrono::January / 31 / 2026) + 9h + 5min; });
}

} // namespace kestrin
