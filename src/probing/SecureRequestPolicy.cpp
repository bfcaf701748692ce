#include "probing/SecureRequestPolicy.h"

#include "destinations/EffectivePort.h"
#include "destinations/LocalHostName.h"
#include "destinations/URLScheme.h"
#include "destinations/WebsiteURLPolicy.h"
#include "probing/SecureHTTPError.h"

namespace kestrin {
namespace {

constexpr int websiteRedirects = 5;
constexpr int providerRedirects = 2;

bool isAllowedPort(const SecureRequestPolicy& policy, int port) {
    if (port == policy.originalEffectivePort) return true;
    // An upgrade to HTTPS changes the port along with the scheme.
    return policy.originalScheme == "http" && port == 443;
}

} // namespace

SecureRequestPolicy websitePolicy(const WebURL& url) {
    try {
        static_cast<void>(validatedWebsiteURL(url.text));
    } catch (const WebsiteURLPolicy::ValidationError& refusal) {
        throw SecureHTTPError::invalidDestination(refusal.message);
    }
    if (url.host.empty()) throw SecureHTTPError::invalidDestination(url.text);

    SecureRequestPolicy policy;
    policy.allowedHosts = equivalentHosts(url.host);
    policy.originalScheme = "https";
    policy.originalEffectivePort = effectivePort(url);
    policy.headersOnly = true;
    policy.maximumBodyBytes = 0;
    policy.maximumRedirects = websiteRedirects;
    return policy;
}

SecureRequestPolicy providerPolicy(const std::vector<WebURL>& urls, std::int64_t maximumBodyBytes) {
    SecureRequestPolicy policy;
    policy.allowedEndpointURLs.emplace();
    for (const WebURL& url : urls) {
        if (lowercaseScheme(url) != "https" || url.host.empty())
            throw SecureHTTPError::invalidDestination("Provider endpoint allowlist");
        policy.allowedHosts.insert(normalizedHost(url.host));
        policy.allowedEndpointURLs->insert(normalizedEndpoint(url));
    }
    if (urls.empty()) throw SecureHTTPError::invalidDestination("Provider endpoint allowlist");
    policy.originalScheme = "https";
    policy.originalEffectivePort = effectivePort(urls.front());
    policy.headersOnly = false;
    policy.maximumBodyBytes = maximumBodyBytes;
    policy.maximumRedirects = providerRedirects;
    return policy;
}

void validateDestination(const SecureRequestPolicy& policy, const WebURL& url) {
    if (url.user || url.password) throw SecureHTTPError::invalidDestination(url.text);
    const std::string scheme = lowercaseScheme(url);
    if ((scheme != "http" && scheme != "https") || url.host.empty())
        throw SecureHTTPError::invalidDestination(url.text);
    if (policy.originalScheme == "https" && scheme != "https")
        throw SecureHTTPError::blockedRedirect("HTTPS downgrade");
    if (const std::string host = normalizedHost(url.host); !policy.allowedHosts.contains(host))
        throw SecureHTTPError::blockedRedirect("destination host " + host);
    if (const int port = effectivePort(url); !isAllowedPort(policy, port))
        throw SecureHTTPError::blockedRedirect("destination port " + std::to_string(port));
    if (policy.allowedEndpointURLs && !policy.allowedEndpointURLs->contains(normalizedEndpoint(url)))
        throw SecureHTTPError::blockedRedirect("unapproved provider endpoint");
}

} // namespace kestrin
