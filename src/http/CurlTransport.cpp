#include "http/CurlTransport.h"

#include "http/CurlHop.h"
#include "http/TransferFailure.h"

#include <curl/curl.h>

#include <optional>
#include <utility>

namespace kestrin {

namespace {

using Kind = HTTPHopError::Kind;

std::unexpected<HTTPHopError> transportError(const char* sentence) {
    return std::unexpected(HTTPHopError{Kind::Transport, sentence});
}

std::expected<HTTPHopResponse, HTTPHopError> outcomeOf(CurlHop& hop, CURLcode code) {
    switch (hop.collector().state()) {
    case ResponseCollector::State::Complete:
        return hop.collector().takeResponse();
    case ResponseCollector::State::TooLarge:
        return std::unexpected(HTTPHopError{Kind::ResponseTooLarge, {}});
    case ResponseCollector::State::Invalid:
        return transportError(sentences::invalidResponse);
    case ResponseCollector::State::Reading:
        break;
    }
    if (code == CURLE_OK) {
        if (hop.collector().hasHead()) return hop.collector().takeResponse();
        return std::unexpected(HTTPHopError{Kind::NonHTTPResponse, {}});
    }
    if (code == CURLE_COULDNT_CONNECT && hop.admitted().refusedAll()) {
        return std::unexpected(HTTPHopError{Kind::RefusedDestination, {}});
    }
    return std::unexpected(hopErrorFor(hop.failure(code)));
}

} // namespace

CurlTransport::CurlTransport() : CurlTransport(TrustStore::systemBundles(), ProxySettings::fromEnvironment()) {}

CurlTransport::CurlTransport(std::vector<std::filesystem::path> trustBundles, ProxySettings proxySettings)
    : trustStore_(std::move(trustBundles)), proxySettings_(std::move(proxySettings)) {
    // Counted and guarded by libcurl itself; without this the first call would do it, and not safely beside
    // another.
    curl_global_init(CURL_GLOBAL_DEFAULT);
}

std::optional<std::string> CurlTransport::proxyHostFor(const std::string& host) const {
    const auto proxy = proxySettings_.proxyFor(host);
    if (!proxy || !*proxy) return std::nullopt;
    return (*proxy)->host;
}

std::expected<HTTPHopResponse, HTTPHopError> CurlTransport::perform(
    const HTTPHopRequest& request, std::stop_token stop) {
    if (stop.stop_requested()) return std::unexpected(HTTPHopError{Kind::Cancelled, {}});
    const auto proxy = proxySettings_.proxyFor(request.host);
    if (!proxy) return transportError(sentences::requestFailed);
    std::optional<CurlHop::ProxyRoute> route;
    if (proxy->has_value()) {
        if (request.proxyAddresses.empty()) return transportError(sentences::requestFailed);
        route = CurlHop::ProxyRoute{**proxy, request.proxyAddresses};
    }

    const auto trusted = trustStore_.current();
    CurlHop hop(request, route, trusted.get());
    if (!hop.ready()) return std::unexpected(HTTPHopError{Kind::RefusedDestination, {}});
    const TransferLoop::Result result = hop.loop().run(hop.handle(), stop);
    switch (result.end) {
    case TransferLoop::End::Cancelled:
        return std::unexpected(HTTPHopError{Kind::Cancelled, {}});
    case TransferLoop::End::TimedOut:
        return transportError(sentences::timedOut);
    case TransferLoop::End::Finished:
        break;
    }
    return outcomeOf(hop, result.code);
}

} // namespace kestrin
