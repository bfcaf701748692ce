#pragma once

#include "http/HTTPHop.h"

#include <expected>
#include <optional>
#include <stop_token>
#include <string>

namespace kestrin {

/// Makes one bounded HTTP request. It knows neither policies nor redirects: who calls it has judged the destination
/// and judges what comes back. Calls block the calling thread, may run on any number of threads at once and share
/// nothing with one another; a triggered stop token ends them within a moment.
class HTTPTransport {
public:
    virtual ~HTTPTransport() = default;

    /// The host (no brackets) of the proxy that a request to `host` goes through; nothing for a direct connection.
    /// Who calls `perform` finds its addresses first, since a resolution cannot be stopped.
    [[nodiscard]] virtual std::optional<std::string> proxyHostFor(const std::string& host) const = 0;

    [[nodiscard]] virtual std::expected<HTTPHopResponse, HTTPHopError> perform(
        const HTTPHopRequest& request, std::stop_token stop) = 0;
};

} // namespace kestrin
