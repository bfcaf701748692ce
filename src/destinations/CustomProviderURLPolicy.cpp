#include "destinations/CustomProviderURLPolicy.h"

#include "destinations/BlockedHost.h"
#include "destinations/URLScheme.h"
#include "destinations/URLSplitter.h"
#include "text/Trimming.h"

#include <cstddef>
#include <utility>

namespace kestrin {
namespace {

using Case = CustomProviderURLPolicy::ValidationError::Case;

constexpr std::size_t maximumBytes = 2048;

const char* description(Case failure) {
    switch (failure) {
    case Case::tooLong:
        return "The public status page URL is too long.";
    case Case::incomplete:
        return "Enter a complete public status page URL.";
    case Case::httpsRequired:
        return "Public status page URLs must use HTTPS.";
    case Case::embeddedCredentials:
        return "Public status page URLs cannot contain embedded credentials.";
    case Case::queryOrFragment:
        return "Public status page URLs cannot contain a query or fragment.";
    case Case::unsupportedPort:
        return "Public status page URLs must use the standard HTTPS port.";
    case Case::privateDestination:
        return "Private, local, and reserved status destinations are blocked.";
    }
    return "";
}

} // namespace

CustomProviderURLPolicy::ValidationError::ValidationError(Case failure)
    : MessageError(description(failure)), kind(failure) {}

WebURL validatedCustomProviderURL(std::string_view text) {
    using Error = CustomProviderURLPolicy::ValidationError;
    text = trimmed(text);
    if (text.size() > maximumBytes) throw Error(Case::tooLong);
    auto url = splitURL(text);
    if (!url) throw Error(Case::incomplete);
    if (lowercaseScheme(*url) != "https") throw Error(Case::httpsRequired);
    if (url->user || url->password) throw Error(Case::embeddedCredentials);
    if (url->query || url->fragment) throw Error(Case::queryOrFragment);
    if (url->port && *url->port != 443) throw Error(Case::unsupportedPort);
    if (isBlockedHost(url->host)) throw Error(Case::privateDestination);
    return std::move(*url);
}

} // namespace kestrin
