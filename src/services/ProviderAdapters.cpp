#include "services/ProviderAdapters.h"

#include "destinations/AddressTable.h"
#include "destinations/LocalHostName.h"
#include "destinations/URLSplitter.h"
#include "services/BetterStackFeed.h"
#include "services/InstatusFeed.h"
#include "services/ProviderAdapterParseError.h"
#include "services/SlackFeed.h"
#include "services/StatuspageFeed.h"
#include "json/JSONParser.h"

#include <algorithm>
#include <array>

namespace kestrin {

namespace {

template <class Feed> ParsedProviderStatus read(const JSONValue& document) {
    return Feed::decode(document).outcome();
}

struct Adapter {
    std::string_view id;
    std::int64_t version;
    std::string_view platform;
    std::array<std::string_view, 2> paths; ///< in the order to be tried; empty: no further one
    std::string_view onlyHost;             ///< empty: any
    ParsedProviderStatus (*read)(const JSONValue& document);
};

constexpr std::array<Adapter, 4> adapters = {{
    {"statuspage-v2", 1, "Atlassian Statuspage", {"/api/v2/status.json", "/api/v2/summary.json"}, "",
        read<StatuspageFeed>},
    {"betterstack-index", 1, "Better Stack", {"/index.json"}, "", read<BetterStackFeed>},
    {"instatus-summary", 1, "Instatus", {"/summary.json"}, "", read<InstatusFeed>},
    {"slack-status-v2", 1, "Slack Status API", {"/api/v2.0.0/current"}, slackStatusHost, read<SlackFeed>},
}};

const Adapter* adapterOf(std::string_view id, std::int64_t version) {
    const auto* const found = std::ranges::find(adapters, id, &Adapter::id);
    return found == adapters.end() || found->version != version ? nullptr : found;
}

} // namespace

const std::vector<ProviderAdapterIdentity>& supportedProviderAdapters() {
    static const std::vector<ProviderAdapterIdentity> identities = [] {
        std::vector<ProviderAdapterIdentity> all;
        for (const Adapter& adapter : adapters)
            all.push_back({std::string(adapter.id), adapter.version});
        return all;
    }();
    return identities;
}

bool isSupportedProviderAdapter(std::string_view adapterID, std::int64_t adapterVersion) {
    return adapterOf(adapterID, adapterVersion) != nullptr;
}

std::string_view platformName(const ProviderAdapterIdentity& identity) {
    const Adapter* adapter = adapterOf(identity.id, identity.version);
    return adapter == nullptr ? "Unsupported status platform" : adapter->platform;
}

ParsedProviderStatus parseProviderStatus(
    std::string_view data, const std::string& adapterID, std::int64_t adapterVersion) {
    const Adapter* adapter = adapterOf(adapterID, adapterVersion);
    if (adapter == nullptr) throw ProviderAdapterParseError(ProviderAdapterParseError::Kind::unrecognized);
    try {
        return adapter->read(parseForeignJSON(data));
    } catch (const JSONError&) {
        throw ProviderAdapterParseError(ProviderAdapterParseError::Kind::malformed);
    }
}

std::vector<WebURL> statusEndpoints(
    const WebURL& baseURL, const std::string& adapterID, std::int64_t adapterVersion) {
    const Adapter* adapter = adapterOf(adapterID, adapterVersion);
    const std::string host = normalizedHost(baseURL.host);
    if (adapter == nullptr || host.empty()) return {};
    if (!adapter->onlyHost.empty() && host != adapter->onlyHost) return {};

    WebURL endpoint;
    endpoint.scheme = "https";
    endpoint.host = isNumericAddress(baseURL.host) ? baseURL.host : host;
    std::vector<WebURL> endpoints;
    for (const std::string_view path : adapter->paths) {
        if (path.empty()) continue;
        endpoint.path = path;
        endpoint.text = joinURL(endpoint);
        // Whoever contacts it must read the parts that were meant here; a host that is none could break out.
        if (splitURL(endpoint.text) == endpoint) endpoints.push_back(endpoint);
    }
    return endpoints;
}

} // namespace kestrin
