#pragma once

#include "http/HTTPTransport.h"
#include "http/ProxySettings.h"
#include "http/TrustStore.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// `HTTPTransport` on libcurl. Each call has a connection of its own: no cookies, caches, credentials, kept
/// sessions or second tries. TLS 1.2 or newer, HTTP/1.1 or HTTP/2 as the server chooses. Only the trusted
/// authorities are shared between calls, so a program keeps one transport. Any thread; outlives every call in
/// progress.
class CurlTransport final : public HTTPTransport {
public:
    /// Trusts what the system trusts and goes through the proxy that the environment names.
    CurlTransport();
    explicit CurlTransport(std::vector<std::filesystem::path> trustBundles, ProxySettings proxySettings = {});

    [[nodiscard]] std::optional<std::string> proxyHostFor(const std::string& host) const override;
    [[nodiscard]] std::expected<HTTPHopResponse, HTTPHopError> perform(
        const HTTPHopRequest& request, std::stop_token stop) override;

private:
    TrustStore trustStore_;
    ProxySettings proxySettings_;
};

} // namespace kestrin
