#include "destinations/WebsiteURLPolicy.h"

#include "destinations/BlockedHost.h"
#include "destinations/URLScheme.h"
#include "destinations/URLSplitter.h"

#include <utility>

namespace kestrin {
namespace {

using Case = WebsiteURLPolicy::ValidationError::Case;

const char* description(Case failure) {
    switch (failure) {
    case Case::incomplete:
        return "Every website needs a complete HTTPS URL.";
    case Case::httpsRequired:
        return "Website URLs must use HTTPS.";
    case Case::embeddedCredentials:
        return "Website URLs cannot contain embedded credentials.";
    case Case::privateDestination:
        return "Private, local, and reserved network destinations are blocked.";
    }
    return "";
}

} // namespace

WebsiteURLPolicy::ValidationError::ValidationError(Case failure)
    : MessageError(description(failure)), kind(failure) {}

WebURL validatedWebsiteURL(std::string_view text) {
    using Error = WebsiteURLPolicy::ValidationError;
    auto url = splitURL(text);
    if (!url) throw Error(Case::incomplete);
    if (lowercaseScheme(*url) != "https") throw Error(Case::httpsRequired);
    if (url->user || url->password) throw Error(Case::embeddedCredentials);
    if (isBlockedHost(url->host)) throw Error(Case::privateDestination);
    return std::move(*url);
}

} // namespace kestrin
