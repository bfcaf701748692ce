#include "http/CurlDestination.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

namespace {

bool isPrintable(std::string_view text, char from) {
    return std::all_of(text.begin(), text.end(), [from](char c) { return c >= from && c <= '~'; });
}

bool consistsOf(std::string_view text, std::string_view marks) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [marks](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || marks.contains(c);
    });
}

bool isHeaderName(std::string_view text) {
    return consistsOf(text, "!#$%&'*+-.^_`|~");
}

/// libcurl decodes percent signs and converts letters outside ASCII at places of its own choosing.
bool isPlainHost(std::string_view text) {
    return consistsOf(text, text.contains(':') ? ".:" : "-._");
}

/// Nothing in these can end its line or its request early.
bool fitsTheWire(const HTTPHopRequest& request) {
    return request.target.starts_with('/') && isPrintable(request.target, '!') &&
           request.target.find('#') == std::string::npos &&
           std::all_of(request.headers.begin(), request.headers.end(), [](const HTTPHeader& header) {
               return isHeaderName(header.name) && isPrintable(header.value, ' ');
           });
}

using Bytes = std::array<unsigned char, 16>;

std::optional<Bytes> ipv6(const std::string& text) {
    Bytes bytes{};
    if (inet_pton(AF_INET6, text.c_str(), bytes.data()) != 1) return std::nullopt;
    return bytes;
}

bool isSameHost(const std::string& judged, const std::string& kept) {
    if (judged.find(':') == std::string::npos) return judged == kept;
    if (!kept.starts_with('[') || !kept.ends_with(']')) return false;
    const auto wanted = ipv6(judged);
    return wanted && wanted == ipv6(kept.substr(1, kept.size() - 2));
}

} // namespace

CurlURL curlDestination(const HTTPHopRequest& request) {
    if (request.scheme != "https" || !isPlainHost(request.host) || request.port == 0 || !fitsTheWire(request))
        return nullptr;
    CurlURL url(curl_url());
    if (!url) return nullptr;

    const bool literal = request.host.find(':') != std::string::npos;
    const std::string host = literal ? "[" + request.host + "]" : request.host;
    const std::string port = std::to_string(request.port);
    const bool filled = curl_url_set(url.get(), CURLUPART_SCHEME, "https", 0) == CURLUE_OK &&
                        curl_url_set(url.get(), CURLUPART_HOST, host.c_str(), 0) == CURLUE_OK &&
                        curl_url_set(url.get(), CURLUPART_PORT, port.c_str(), 0) == CURLUE_OK &&
                        curl_url_set(url.get(), CURLUPART_PATH, "/", 0) == CURLUE_OK;
    if (!filled || partOf(url, CURLUPART_SCHEME) != "https" || partOf(url, CURLUPART_PORT) != port) return nullptr;
    const auto kept = partOf(url, CURLUPART_HOST);
    if (!kept || !isSameHost(request.host, *kept)) return nullptr;
    for (const CURLUPart absent : {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_ZONEID}) {
        if (partOf(url, absent)) return nullptr;
    }
    return url;
}

} // namespace kestrin
