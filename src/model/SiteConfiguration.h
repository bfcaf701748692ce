#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// One website as the user entered it; the URL is kept as typed. The id names the history file.
struct SiteDefinition {
    std::string id;
    std::string name;
    std::string url;
    bool enabled = true;

    bool operator==(const SiteDefinition&) const = default;
};

/// Which of the included status services are on. Services that the user added carry their own switch.
struct ProviderStatusConfiguration {
    bool enabled = false;
    std::vector<std::string> providerIDs = {"openai", "claude"};

    bool operator==(const ProviderStatusConfiguration&) const = default;
};

/// What "sites.json" holds. The order of the sites is the user's.
struct SiteConfiguration {
    std::vector<SiteDefinition> sites;
    std::optional<std::string> activeSiteID;
    std::int64_t intervalSeconds = 300;
    ProviderStatusConfiguration providerStatus;

    bool operator==(const SiteConfiguration&) const = default;
};

} // namespace kestrin
