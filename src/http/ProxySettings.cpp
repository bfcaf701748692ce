#include "http/ProxySettings.h"

#include "http/CurlURL.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace kestrin {

namespace {

/// Read by libcurl's own parser, as libcurl is who connects to it.
std::optional<ProxyServer> parsed(const std::string& text) {
    constexpr std::array<std::string_view, 6> schemes{"http", "https", "socks4", "socks4a", "socks5", "socks5h"};
    ProxyServer server;
    server.url = text.find("://") == std::string::npos ? "http://" + text : text;
    const CurlURL url(curl_url());
    if (!url || curl_url_set(url.get(), CURLUPART_URL, server.url.c_str(), CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK) {
        return std::nullopt;
    }
    const std::string scheme = partOf(url, CURLUPART_SCHEME).value_or("");
    if (std::find(schemes.begin(), schemes.end(), scheme) == schemes.end()) return std::nullopt;
    server.host = partOf(url, CURLUPART_HOST).value_or("");
    if (server.host.starts_with('[')) server.host = server.host.substr(1, server.host.size() - 2);
    if (server.host.empty()) return std::nullopt;
    const std::string port = partOf(url, CURLUPART_PORT).value_or("");
    // What libcurl assumes where none is written.
    const unsigned long number =
        port.empty() ? (scheme == "https" ? 443 : 1080) : std::strtoul(port.c_str(), nullptr, 10);
    if (number == 0 || number > 65535) return std::nullopt;
    server.port = static_cast<std::uint16_t>(number);
    return server;
}

std::string firstSet(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

} // namespace

ProxySettings::ProxySettings(const std::string& proxy, ProxyExceptions exceptions)
    : exceptions_(std::move(exceptions)) {
    if (proxy.empty()) return;
    server_ = parsed(proxy);
    if (!server_->has_value()) server_ = std::unexpected(Problem::Unusable);
}

ProxySettings ProxySettings::fromEnvironment() {
    return ProxySettings(firstSet({"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}),
        ProxyExceptions(firstSet({"no_proxy", "NO_PROXY"})));
}

std::expected<std::optional<ProxyServer>, ProxySettings::Problem> ProxySettings::proxyFor(
    const std::string& host) const {
    if (exceptions_.covers(host)) return std::optional<ProxyServer>();
    return server_;
}

} // namespace kestrin
