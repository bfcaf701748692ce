#pragma once

#include "http/CurlTransport.h"
#include "http/support/TLSServer.h"

#include <chrono>
#include <expected>
#include <stop_token>
#include <string>
#include <utility>

namespace kestrin::test {

using namespace std::chrono_literals;

/// What most tests need: an authority that a transport trusts, and requests for its "site.test" on loopback.
struct TrustedSite {
    TestAuthority authority;
    BundleFile bundle{authority.pem()};
    CurlTransport transport{{bundle.path()}};

    /// The time-outs are far beyond any test.
    [[nodiscard]] static HTTPHopRequest request(std::uint16_t port) {
        HTTPHopRequest request;
        request.scheme = "https";
        request.host = "site.test";
        request.port = port;
        request.target = "/";
        request.addresses = {"127.0.0.1"};
        request.maximumBodyBytes = 1000;
        request.inactivityTimeout = 60s;
        request.totalTimeout = 60s;
        return request;
    }

    [[nodiscard]] std::expected<HTTPHopResponse, HTTPHopError> perform(const HTTPHopRequest& request) {
        return transport.perform(request, {});
    }

    /// One request with the usual limits to a server with this script.
    [[nodiscard]] std::expected<HTTPHopResponse, HTTPHopError> exchange(
        TLSServer::Script script, bool headersOnly = false) {
        const TLSServer server(authority.issue(), std::move(script));
        auto hop = request(server.port());
        hop.headersOnly = headersOnly;
        return perform(hop);
    }
};

/// The error's sentence, or what came in its place.
[[nodiscard]] inline std::string sentenceOf(const std::expected<HTTPHopResponse, HTTPHopError>& result) {
    if (result) return "response with status " + std::to_string(result->status);
    switch (result.error().kind) {
    case HTTPHopError::Kind::Transport:
        return result.error().message;
    case HTTPHopError::Kind::Cancelled:
        return "cancelled";
    case HTTPHopError::Kind::ResponseTooLarge:
        return "too large";
    case HTTPHopError::Kind::NonHTTPResponse:
        return "not HTTP";
    case HTTPHopError::Kind::RefusedDestination:
        return "refused";
    }
    return "unknown";
}

} // namespace kestrin::test
