#pragma once

#include "model/WebURL.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrin {

/// What one request may reach and how much may come back. The same policy judges the first request and the target
/// of every redirect. A plain value; any thread.
struct SecureRequestPolicy {
    std::set<std::string> allowedHosts;                       ///< normalized: lower case, no dots around
    std::optional<std::set<std::string>> allowedEndpointURLs; ///< absent: any URL on the allowed hosts
    std::string originalScheme;
    int originalEffectivePort = 443;
    bool headersOnly = false; ///< the response's body is never read
    std::int64_t maximumBodyBytes = 0;
    int maximumRedirects = 0;

    bool operator==(const SecureRequestPolicy&) const = default;
};

/// A website and its "www." twin on the website's own port; headers only, five redirects.
/// Throws `SecureHTTPError` `invalidDestination` for a URL that is no acceptable website.
[[nodiscard]] SecureRequestPolicy websitePolicy(const WebURL& url);

/// Exactly the given feeds, on the port of the first, two redirects among them.
/// Throws `SecureHTTPError` `invalidDestination` for an empty list and for a URL without HTTPS or without a host.
[[nodiscard]] SecureRequestPolicy providerPolicy(const std::vector<WebURL>& urls, std::int64_t maximumBodyBytes);

/// Judges a destination as far as its text allows; what remains is the test of
/// the addresses that a fresh name resolution gives.
/// Throws the `SecureHTTPError` of the first rule that is broken.
void validateDestination(const SecureRequestPolicy& policy, const WebURL& url);

} // namespace kestrin
