#pragma once

#include "model/ProviderDefinition.h"
#include "model/WebURL.h"
#include "services/ParsedProviderStatus.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

// The feed formats that can be read. An adapter is a pure function from the bytes of one response to one status: it
// knows nothing of networks and files and keeps nothing. Everything here may be called on any thread.

/// The one host of the Slack status API, compared with a host's `normalizedHost`.
inline constexpr std::string_view slackStatusHost = "slack-status.com";

/// All identities there are, in a fixed order.
[[nodiscard]] const std::vector<ProviderAdapterIdentity>& supportedProviderAdapters();
[[nodiscard]] bool isSupportedProviderAdapter(std::string_view adapterID, std::int64_t adapterVersion);

/// The feed format in the user's words; "Unsupported status platform" for an identity that is not supported.
[[nodiscard]] std::string_view platformName(const ProviderAdapterIdentity& adapter);

/// Reads a response. Throws `ProviderAdapterParseError`, also, and without a look at the bytes, for an identity
/// that is not supported; a feed whose content contradicts itself is no error but has the state `unknown`.
/// Meant for bounded input (262,144 bytes), safe with any.
[[nodiscard]] ParsedProviderStatus parseProviderStatus(
    std::string_view data, const std::string& adapterID, std::int64_t adapterVersion);

/// Where the adapter finds its feed on the host of `baseURL`, in the order to be tried: HTTPS on the standard port,
/// without credentials, query or fragment, whatever path the base has. None for an identity that is not supported,
/// for a URL without a host, and for the Slack adapter on any host but `slackStatusHost`.
[[nodiscard]] std::vector<WebURL> statusEndpoints(
    const WebURL& baseURL, const std::string& adapterID, std::int64_t adapterVersion);

} // namespace kestrin
