#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <vector>

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
    /// `proxy`: a URL, or host and port; empty for none. `exceptions`: hosts to reach directly, as `no_proxy` lists
    /// them: names that also cover their subdomains, addresses, networks such as 10.0.0.0/8, or "*" for all.
    ProxySettings(std::string proxy, const std::string& exceptions);

    /// `https_proxy`, `HTTPS_PROXY`, `all_proxy` or `ALL_PROXY`, whichever is first set and not empty, with
    /// `no_proxy` or `NO_PROXY`. To be called before threads change the environment.
    [[nodiscard]] static ProxySettings fromEnvironment();

    /// The proxy for a request to `host` (no brackets), nothing for a direct connection. A proxy that is set but
    /// makes no sense is a problem: going around it in silence is not what its owner wanted.
    [[nodiscard]] std::expected<std::optional<ProxyServer>, Problem> proxyFor(const std::string& host) const;

private:
    [[nodiscard]] bool isException(const std::string& host) const;

    std::string proxy_;
    std::vector<std::string> exceptions_;
};

} // namespace kestrin
