#include "probing/FreshHTTPClient.h"

#include "destinations/AddressTable.h"
#include "destinations/EffectivePort.h"
#include "destinations/LocalHostName.h"
#include "destinations/URLScheme.h"
#include "destinations/WireTarget.h"
#include "probing/RedirectTarget.h"
#include "probing/SecureHTTPError.h"
#include "probing/TransportError.h"
#include "tasks/CancellationError.h"
#include "tasks/Concurrently.h"
#include "tasks/FifoGate.h"
#include "tasks/Offload.h"

#include <algorithm>
#include <expected>
#include <utility>

namespace kestrin {

struct FreshHTTPClient::Shared {
    FreshHTTPServices services;
    FifoGate judgement;

    explicit Shared(FreshHTTPServices given) : services(std::move(given)) {}
};

namespace {

using namespace std::chrono_literals;
using HopResult = std::expected<HTTPHopResponse, HTTPHopError>;

constexpr std::chrono::milliseconds resourceAllowance = 2s;
constexpr const char* timedOut = "The request timed out.";
constexpr const char* proxyNotFound = "The request failed.";

Instant resourceDeadline(Instant start, std::chrono::milliseconds timeout) {
    const auto room = std::chrono::floor<std::chrono::milliseconds>(Instant::max() - start) - resourceAllowance;
    if (timeout >= room) return Instant::max();
    return start + std::max(timeout, 0ms) + resourceAllowance;
}

HopResult failedHop(HTTPHopError::Kind kind, std::string message) {
    HTTPHopError error;
    error.kind = kind;
    error.message = std::move(message);
    return std::unexpected(std::move(error));
}

HTTPHopRequest hopRequest(const HTTPRequest& request, const SecureRequestPolicy& policy, const WebURL& target,
    std::vector<std::string> addresses) {
    HTTPHopRequest hop;
    hop.scheme = lowercaseScheme(target);
    hop.host = target.host;
    hop.port = static_cast<std::uint16_t>(effectivePort(target));
    hop.target = wireTarget(target);
    hop.headers = request.headers;
    hop.addresses = std::move(addresses);
    hop.headersOnly = policy.headersOnly;
    hop.maximumBodyBytes = policy.maximumBodyBytes;
    hop.inactivityTimeout = request.timeout;
    return hop;
}

[[noreturn]] void throwFailure(const HTTPHopError& error, const SecureRequestPolicy& policy, const WebURL& target) {
    switch (error.kind) {
    case HTTPHopError::Kind::Transport:
        break;
    case HTTPHopError::Kind::Cancelled:
        throw CancellationError();
    case HTTPHopError::Kind::ResponseTooLarge:
        throw SecureHTTPError::responseTooLarge(policy.maximumBodyBytes);
    case HTTPHopError::Kind::NonHTTPResponse:
        throw SecureHTTPError::nonHTTPResponse();
    case HTTPHopError::Kind::RefusedDestination:
        throw SecureHTTPError::invalidDestination(target.text);
    }
    throw TransportError(error.message);
}

std::vector<std::string> judgedAddresses(const WebURL& url, DNSResolution resolution) {
    if (!allAddressesPublic(resolution.ok, resolution.ips))
        throw SecureHTTPError::privateDestination(normalizedHost(url.host));
    return std::move(resolution.ips);
}

} // namespace

/// The coroutines of one call, which hold all that they need themselves.
class FreshHTTPClient::Call {
public:
    using SharedState = std::shared_ptr<const Shared>;

    static Task<FreshHTTPResponse> run(SharedState shared, HTTPRequest request, SecureRequestPolicy policy) {
        if (!request.url) throw SecureHTTPError::invalidDestination("Missing URL");
        const TaskContext context = co_await currentContext();
        WebURL target = *request.url;
        auto judging = judgeFirst(shared, target, policy);
        std::vector<std::string> addresses = co_await std::move(judging);
        const Instant deadline = resourceDeadline(shared->services.clock.now(), request.timeout);

        for (int redirectCount = 0;;) {
            if (context.isCancelled()) throw CancellationError();
            HTTPHopRequest hop = hopRequest(request, policy, target, std::move(addresses));
            auto locating = locateProxy(shared, hop.host, deadline);
            hop.proxyAddresses = co_await std::move(locating);
            auto transferring = transfer(shared, std::move(hop), deadline);
            HopResult result = co_await std::move(transferring);
            if (!result) throwFailure(result.error(), policy, target);
            if (!result->isRedirect()) co_return response(std::move(*result), policy);

            target = redirectTarget(target, *result);
            if (++redirectCount > policy.maximumRedirects)
                throw SecureHTTPError::blockedRedirect("too many redirects");
            validateDestination(policy, target);
            auto rejudging = resolveTarget(shared, target, deadline);
            addresses = co_await std::move(rejudging);
        }
    }

private:
    static Task<std::vector<std::string>> judgeFirst(SharedState shared, WebURL url, SecureRequestPolicy policy) {
        const TaskContext context = co_await currentContext();
        const std::optional<FifoGate::Turn> turn = co_await shared->judgement.enter();
        if (!turn || context.isCancelled()) throw CancellationError();
        validateDestination(policy, url);
        auto resolving = shared->services.resolver.resolveHostInBackground(url.host);
        DNSResolution resolution = co_await std::move(resolving);
        co_return judgedAddresses(url, std::move(resolution));
    }

    static Task<std::vector<std::string>> resolveTarget(SharedState shared, WebURL url, Instant deadline) {
        auto resolving = shared->services.resolver.resolveHostUntil(url.host, deadline);
        std::optional<DNSResolution> resolution = co_await std::move(resolving);
        if (!resolution) throw TransportError(timedOut);
        co_return judgedAddresses(url, std::move(*resolution));
    }

    /// Nothing without a proxy. Its own addresses are not judged: a proxy usually stands in the private network.
    static Task<std::vector<std::string>> locateProxy(SharedState shared, std::string host, Instant deadline) {
        std::optional<std::string> proxy = shared->services.transport.proxyHostFor(host);
        if (!proxy) co_return std::vector<std::string>();
        auto resolving = shared->services.resolver.resolveHostUntil(std::move(*proxy), deadline);
        std::optional<DNSResolution> resolution = co_await std::move(resolving);
        if (!resolution) throw TransportError(timedOut);
        if (!resolution->ok) throw TransportError(proxyNotFound);
        co_return std::move(resolution->ips);
    }

    static Task<HopResult> transfer(SharedState shared, HTTPHopRequest hop, Instant deadline) {
        // The work may have waited for a thread: what time is left, and whether anybody still wants the answer,
        // shows only when it runs.
        auto work = [shared, hop = std::move(hop), deadline](std::stop_token stop) mutable -> HopResult {
            if (stop.stop_requested()) return failedHop(HTTPHopError::Kind::Cancelled, {});
            const auto left = deadline - shared->services.clock.now();
            if (left <= left.zero()) return failedHop(HTTPHopError::Kind::Transport, timedOut);
            hop.totalTimeout = std::chrono::ceil<std::chrono::milliseconds>(left);
            return shared->services.transport.perform(hop, std::move(stop));
        };
        auto offloaded = offload(shared->services.pool, std::move(work));
        HopResult result = co_await std::move(offloaded);
        co_return result;
    }

    static FreshHTTPResponse response(HTTPHopResponse last, const SecureRequestPolicy& policy) {
        FreshHTTPResponse response;
        if (!policy.headersOnly) response.data = std::move(last.body);
        response.statusCode = last.status;
        response.contentType = std::move(last.contentType);
        return response;
    }
};

FreshHTTPClient::FreshHTTPClient(FreshHTTPServices services)
    : shared_(std::make_shared<const Shared>(std::move(services))) {}

Task<FreshHTTPResponse> FreshHTTPClient::fetch(HTTPRequest request, SecureRequestPolicy policy) const {
    auto call = Call::run(shared_, std::move(request), std::move(policy));
    return runOn(shared_->services.owner, std::move(call));
}

} // namespace kestrin
