#include "state/SiteValidation.h"

#include "destinations/BlockedHost.h"
#include "destinations/URLScheme.h"
#include "destinations/URLSplitter.h"
#include "state/SafeIdentifier.h"
#include "state/StateErrors.h"
#include "text/Trimming.h"

#include <algorithm>
#include <optional>
#include <string>

namespace kestrin {

namespace {

bool isLowerCaseOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}
bool isIdentifierCharacter(char c) {
    return isLowerCaseOrDigit(c) || c == '-' || c == '_';
}

bool isComplete(const std::optional<WebURL>& url) {
    if (!url || url->host.empty() || url->user || url->password) return false;
    const std::string scheme = lowercaseScheme(*url);
    return scheme == "http" || scheme == "https";
}

} // namespace

void validateNewSiteID(std::string_view id) {
    validateSafeIdentifier(id);
    if (!isLowerCaseOrDigit(id.front()) || !std::ranges::all_of(id, isIdentifierCharacter))
        throw StateValidationError("Site IDs may use lowercase letters, numbers, hyphens, and underscores.");
}

void validateSiteDefinition(const SiteDefinition& site) {
    validateSafeIdentifier(site.id);
    if (trimmed(site.name).empty()) throw StateValidationError("Every imported website needs a display name.");
    const std::optional<WebURL> url = splitURL(trimmed(site.url));
    if (!isComplete(url))
        throw StateValidationError(
            "Every imported website needs a complete HTTP(S) URL without embedded credentials.");
    if (isBlockedHost(url->host))
        throw StateValidationError("Private, local, and reserved imported website destinations are blocked.");
}

} // namespace kestrin
