#pragma once

#include "model/WebURL.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kestrin {

/// Names a feed format and its version, for instance "statuspage-v2" version 1.
struct ProviderAdapterIdentity {
    std::string id;
    std::int64_t version = 1;

    bool operator==(const ProviderAdapterIdentity&) const = default;
};

/// Where the definition of a service came from. In memory only.
enum class ProviderSource { bundledOfficial, custom };

/// The form in which a status service is checked and shown.
struct ProviderDefinition {
    std::string id; ///< stable; names the history file
    std::string name;
    ProviderAdapterIdentity adapter;
    std::vector<WebURL> statusURLs; ///< in the order they are tried; empty: the adapter has none for this page
    WebURL publicStatusURL;         ///< the page for people
    ProviderSource source = ProviderSource::bundledOfficial;

    bool operator==(const ProviderDefinition&) const = default;
};

} // namespace kestrin
