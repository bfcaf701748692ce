#include "fuzz/CurlAgreement.h"

#include "destinations/EffectivePort.h"
#include "destinations/LocalHostName.h"
#include "destinations/URLScheme.h"
#include "destinations/URLSplitter.h"
#include "destinations/WireTarget.h"
#include "http/CurlDestination.h"

#include <algorithm>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <optional>

namespace kestrin {

namespace {

/// Spelled in one way: an IPv6 address as its bytes, because libcurl gives the shortest spelling.
std::string comparable(const std::string& host) {
    if (!host.starts_with('[') || !host.ends_with(']')) return normalizedHost(host);
    std::string bytes(sizeof(in6_addr), '\0');
    const std::string address = host.substr(1, host.size() - 2);
    return inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1 ? "IPv6 " + bytes : host;
}

bool endsInANumber(const std::string& host) {
    const std::string name = normalizedHost(host);
    const std::string last = name.substr(name.rfind('.') + 1);
    return last.find_first_not_of("0123456789") == std::string::npos || last.starts_with("0x");
}

std::string disagreementOnParts(const WebURL& url) {
    HTTPHopRequest request;
    request.scheme = lowercaseScheme(url);
    request.host = url.host;
    request.port = static_cast<std::uint16_t>(effectivePort(url));
    request.target = wireTarget(url);
    const CurlURL filled = curlDestination(request);
    if (!filled) return "libcurl cannot be given its parts";

    const std::string host = asciiHostForWire(url);
    if (comparable(partOf(filled, CURLUPART_HOST).value_or("")) != comparable(host))
        return "another host in the parts";
    if (partOf(filled, CURLUPART_PORT) != std::to_string(request.port)) return "another port in the parts";
    for (const CURLUPart absent : {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_OPTIONS, CURLUPART_ZONEID})
        if (partOf(filled, absent)) return "a part that is not there";
    return {};
}

std::string disagreementOnText(const WebURL& url) {
    if (endsInANumber(url.host)) return {};
    const CurlURL whole(curl_url());
    // Refusing a text that we accept is safe; reading another host out of it would not be.
    if (curl_url_set(whole.get(), CURLUPART_URL, joinURL(url).c_str(), 0) != CURLUE_OK) return {};
    if (comparable(partOf(whole, CURLUPART_HOST).value_or("")) != comparable(asciiHostForWire(url)))
        return "another host in the text";
    if (partOf(whole, CURLUPART_USER).has_value() != (url.user.has_value() && !url.user->empty()))
        return "another user in the text";
    return {};
}

} // namespace

std::string disagreementWithCurl(const WebURL& url) {
    const std::string onParts = disagreementOnParts(url);
    return onParts.empty() ? disagreementOnText(url) : onParts;
}

std::string disagreementWithCurl(const WebURL& base, const std::string& reference, const WebURL& target) {
    const auto isASCII = [](char sign) { return static_cast<unsigned char>(sign) < 0x80; };
    if (!std::ranges::all_of(reference, isASCII) || endsInANumber(base.host) || endsInANumber(target.host))
        return {};
    const CurlURL resolved(curl_url());
    if (curl_url_set(resolved.get(), CURLUPART_URL, joinURL(base).c_str(), 0) != CURLUE_OK ||
        curl_url_set(resolved.get(), CURLUPART_URL, reference.c_str(), 0) != CURLUE_OK)
        return {};
    if (partOf(resolved, CURLUPART_SCHEME) != lowercaseScheme(target)) return "another scheme behind the reference";
    if (comparable(partOf(resolved, CURLUPART_HOST).value_or("")) != comparable(asciiHostForWire(target)))
        return "another host behind the reference";
    if (partOf(resolved, CURLUPART_PORT).value_or("443") != std::to_string(effectivePort(target)))
        return "another port behind the reference";
    return {};
}

} // namespace kestrin
