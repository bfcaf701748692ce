#pragma once

#include "http/ProxyExceptions.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>

namespace kestrin {

/// One proxy: what the user wrote, and where its connection goes.
struct ProxyServer {
    std::string url;  ///< as written, "http://" put in front when no scheme was; may hold the user's credentials
    std::string host; ///< without brackets
    std::uint16_t port = 0;

    bool operator==(const ProxyServer&) const = default;
};

/// The machine's proxy configuration for secure requests, as the usual variables tell it. A value is read once; the
/// environment is not looked at again. Any thread.
class ProxySettings {
public:
    enum class Problem { Unusable };

    /// Direct connections only.
    ProxySettings() = default;
    /// `proxy`: a URL, or host and port; empty for none.
    explicit ProxySettings(const std::string& proxy, ProxyExceptions exceptions = {});

    /// `https_proxy`, `HTTPS_PROXY`, `all_proxy` or `ALL_PROXY`, whichever is first set and not empty, with
    /// `no_proxy` or `NO_PROXY`. To be called before threads change the environment.
    [[nodiscard]] static ProxySettings fromEnvironment();

    /// The proxy for a request to `host` (no brackets), nothing for a direct connection. A proxy that is set but
    /// makes no sense is a problem: going around it in silence is not what its owner wanted.
    [[nodiscard]] std::expected<std::optional<ProxyServer>, Problem> proxyFor(const std::string& host) const;

private:
    std::expected<std::optional<ProxyServer>, Problem> server_;
    ProxyExceptions exceptions_;
};

} // namespace kestrin
