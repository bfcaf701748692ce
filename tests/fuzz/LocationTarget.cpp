#include "destinations/CustomProviderURLPolicy.h"
#include "destinations/LocalHostName.h"
#include "destinations/URLSplitter.h"
#include "destinations/WebsiteURLPolicy.h"
#include "fuzz/CurlAgreement.h"
#include "fuzz/FuzzTarget.h"
#include "probing/RedirectTarget.h"
#include "probing/SecureHTTPError.h"
#include "probing/SecureRequestPolicy.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

// The first line of the input is the URL of a request, each further one what a response names as its `Location`;
// the byte 0xFF separates two headers of one response. Whatever the policy lets through is on the hosts it allows,
// also for libcurl.

using namespace kestrin;

namespace {

/// More than any policy allows. Refusals are thrown, which takes longer than all the rest.
constexpr std::size_t mostHops = 8;

std::vector<std::string> cut(std::string_view text, char mark) {
    std::vector<std::string> pieces;
    for (;;) {
        const auto end = text.find(mark);
        pieces.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

/// What the policy would let the next request go to; nothing for a redirect that is refused.
std::optional<WebURL> permitted(
    const SecureRequestPolicy& policy, const WebURL& base, const HTTPHopResponse& response) {
    try {
        WebURL target = redirectTarget(base, response);
        auto again = splitURL(target.text);
        require(again == target, "the parts of a target are those of its text");
        validateDestination(policy, target);
        const std::string disagreement = disagreementWithCurl(base, response.locations.front(), target);
        require(disagreement.empty(), disagreement);
        return target;
    } catch (const SecureHTTPError& refusal) {
        require(!refusal.message.empty(), "a refusal says why");
        return std::nullopt;
    }
}

void follow(const SecureRequestPolicy& policy, WebURL url, const std::vector<std::string>& lines) {
    for (std::size_t hop = 1; hop < std::min(lines.size(), mostHops + 1); ++hop) {
        const HTTPHopResponse response{
            .status = 302, .contentType = {}, .locations = cut(lines[hop], '\xFF'), .body = {}};
        const auto target = permitted(policy, url, response);
        if (!target) continue;
        require(
            policy.allowedHosts.contains(normalizedHost(target->host)), "a redirect stays on the allowed hosts");
        require(!target->user && !target->password, "a redirect brings no credentials");
        const std::string disagreement = disagreementWithCurl(*target);
        require(disagreement.empty(), disagreement);
        url = *target;
    }
}

template <class Error, class Validate, class Policy>
void followFrom(const std::vector<std::string>& lines, Validate validate, Policy policyOf) {
    std::optional<WebURL> url;
    try {
        url = validate(lines.front());
    } catch (const Error&) {
        return;
    }
    const SecureRequestPolicy policy = policyOf(*url);
    validateDestination(policy, *url);
    follow(policy, *url, lines);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::vector<std::string> lines = cut(inputText(bytes, size), '\n');
    followFrom<WebsiteURLPolicy::ValidationError>(lines, validatedWebsiteURL, websitePolicy);
    followFrom<CustomProviderURLPolicy::ValidationError>(
        lines, validatedCustomProviderURL, [](const WebURL& url) { return providerPolicy({url}, 262'144); });
    return 0;
}
