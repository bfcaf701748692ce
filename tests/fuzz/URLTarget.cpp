#include "destinations/AddressTable.h"
#include "destinations/BlockedHost.h"
#include "destinations/CustomProviderURLPolicy.h"
#include "destinations/URLScheme.h"
#include "destinations/URLSplitter.h"
#include "destinations/WebsiteURLPolicy.h"
#include "destinations/WireTarget.h"
#include "fuzz/CurlAgreement.h"
#include "fuzz/FuzzTarget.h"
#include "text/Trimming.h"

#include <algorithm>
#include <optional>

// The input is a URL as somebody typed it. Whatever a policy accepts, libcurl sees the host that was judged.

using namespace kestrin;

namespace {

bool isPlain(std::string_view host) {
    if (host.find(':') != std::string_view::npos) return isNumericAddress(host);
    const auto mayStand = [](unsigned char sign) {
        return (sign >= 'a' && sign <= 'z') || (sign >= 'A' && sign <= 'Z') || (sign >= '0' && sign <= '9') ||
               sign == '-' || sign == '.' || sign == '_';
    };
    return !host.empty() && std::ranges::all_of(host, mayStand);
}

void judgeSplitting(std::string_view text) {
    const auto url = splitURL(text);
    if (!url) return;
    require(url->text == text, "a URL keeps its text");
    require(isPlain(url->host), "a host is a plain name or an address");
    require(!url->port || *url->port != 0, "no port is 0");
    require(url->path.empty() || url->path.starts_with('/'), "a path begins with a slash");
    auto again = splitURL(joinURL(*url));
    require(again.has_value(), "what was split splits again when it is joined");
    again->text = url->text;
    require(again == url, "splitting and joining changes nothing");
    const auto isVisible = [](unsigned char sign) { return sign > 0x20 && sign < 0x7F; };
    require(std::ranges::all_of(wireTarget(*url), isVisible), "a target fits into a request line");
}

void judgeAccepted(const WebURL& url) {
    require(lowercaseScheme(url) == "https", "only HTTPS is accepted");
    require(!url.user && !url.password, "no credentials are accepted");
    require(!isBlockedHost(url.host), "no private destination is accepted");
    require(!isNumericAddress(url.host) || isPublicAddress(url.host), "only public addresses are accepted");
    const std::string disagreement = disagreementWithCurl(url);
    require(disagreement.empty(), disagreement);
}

template <class Error, class Validate> std::optional<WebURL> accepted(Validate validate, std::string_view text) {
    try {
        return validate(text);
    } catch (const Error& refusal) {
        require(!refusal.message.empty(), "a refusal says why");
        return std::nullopt;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text = inputText(bytes, size);
    judgeSplitting(text);
    const auto website = accepted<WebsiteURLPolicy::ValidationError>(validatedWebsiteURL, text);
    if (website) judgeAccepted(*website);
    const auto page = accepted<CustomProviderURLPolicy::ValidationError>(validatedCustomProviderURL, text);
    if (page) {
        judgeAccepted(*page);
        require(page->text.size() <= 2048 && !page->query && !page->fragment, "a status page is a short plain URL");
        require(!page->port || *page->port == 443, "a status page is at the standard port");
        require(validatedWebsiteURL(trimmed(text)) == *page, "a status page could be a website");
    }
    return 0;
}
