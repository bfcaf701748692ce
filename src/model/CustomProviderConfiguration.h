#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrin {

/// A status service that the user added, as it is stored.
struct CustomProviderDefinition {
    std::string id;
    std::string name;
    std::string statusPageURL;
    std::string adapter;
    std::int64_t adapterVersion = 1;
    bool enabled = true;

    bool operator==(const CustomProviderDefinition&) const = default;
};

/// What "custom-providers.json" holds, in the order the services were added.
struct CustomProviderConfiguration {
    std::int64_t schemaVersion = 1;
    std::vector<CustomProviderDefinition> providers;

    bool operator==(const CustomProviderConfiguration&) const = default;
};

} // namespace kestrin
