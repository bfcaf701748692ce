#include "services/CustomProviderPreview.h"

#include "destinations/AddressTable.h"
#include "destinations/CustomProviderURLPolicy.h"
#include "destinations/LocalHostName.h"
#include "services/ProviderAdapters.h"
#include "services/ProviderFailure.h"
#include "services/ProviderFailures.h"
#include "services/ProviderPreviewError.h"
#include "services/StatusFeedAnswer.h"
#include "services/StatusFeedRequest.h"
#include "tasks/CancellationError.h"

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace kestrin {

namespace {

using Category = ProviderFailureCategory;

/// Unlike in the history of a service, a server's refusal weighs less here than anything that was readable.
constexpr std::array categoriesByWeight = {Category::unsafeDestination, Category::changedSchema,
    Category::malformed, Category::unavailable, Category::unreachable};

struct Probe {
    ProviderAdapterIdentity adapter;
    WebURL endpoint;
};

WebURL eligiblePage(const std::string& input) {
    try {
        WebURL page = validatedCustomProviderURL(input);
        if (normalizedHost(page.host).empty())
            throw ProviderPreviewError(Category::unsafeDestination, "Missing public host.");
        return page;
    } catch (const CustomProviderURLPolicy::ValidationError& refusal) {
        throw ProviderPreviewError(Category::unsafeDestination, refusal.message);
    }
}

/// A name that does not resolve is no proof of bad intent, unlike in a check: the user may have mistyped it.
void requirePublic(const DNSResolution& resolution) {
    if (!resolution.ok || resolution.ips.empty())
        throw ProviderPreviewError(
            Category::unreachable, resolution.error.value_or("DNS returned no public address."));
    if (!allAddressesPublic(resolution.ok, resolution.ips))
        throw ProviderPreviewError(Category::unsafeDestination,
            resolution.error.value_or("Private or reserved status destination blocked."));
}

Task<DNSResolution> resolve(std::string host, ProviderCheckDependencies dependencies) {
    try {
        auto resolving = dependencies.resolveHost(std::move(host));
        DNSResolution resolution = co_await std::move(resolving);
        co_return resolution;
    } catch (const CancellationError&) {
        throw;
    } catch (...) {
        const ProviderFailure failure = currentFailure();
        throw ProviderPreviewError(failure.category, failure.description);
    }
}

std::vector<Probe> probesOf(const WebURL& page) {
    using Candidates = std::vector<ProviderAdapterIdentity>;
    const Candidates candidates = normalizedHost(page.host) == slackStatusHost
                                      ? Candidates{{"slack-status-v2", 1}}
                                      : Candidates{{"statuspage-v2", 1}, {"instatus-summary", 1}};
    std::vector<Probe> probes;
    for (const ProviderAdapterIdentity& adapter : candidates) {
        const std::vector<WebURL> endpoints = statusEndpoints(page, adapter.id, adapter.version);
        if (!endpoints.empty()) probes.push_back({adapter, endpoints.front()});
    }
    return probes;
}

/// A page of another platform answers with other documents on every path: that alone does not count.
void note(ProviderFailures& failures, const std::string& path, const StatusFeedAnswer& answer) {
    using Kind = StatusFeedAnswer::Kind;
    switch (answer.kind) {
    case Kind::Failed:
        return failures.add(path + ": " + answer.failure.description, answer.failure.category);
    case Kind::OtherStatus:
        return failures.add(
            path + ": HTTP " + std::to_string(answer.httpStatus.value_or(0)), Category::unavailable);
    case Kind::OtherContentType:
        return failures.add(path + ": unsupported Content-Type", std::nullopt);
    case Kind::Unrecognized:
        return failures.add(path + ": format not recognized", std::nullopt);
    case Kind::Malformed:
        return failures.add(path + ": malformed JSON", Category::malformed);
    case Kind::UnknownState:
        return failures.add(path + ": unrecognized or inconsistent current state", Category::changedSchema);
    case Kind::KnownState:
        return;
    }
}

CustomProviderPreview previewOf(WebURL page, Probe probe, ParsedProviderStatus status) {
    CustomProviderPreview preview;
    preview.name = status.pageName ? std::move(*status.pageName) : normalizedHost(page.host);
    preview.state = status.state;
    preview.summary = std::move(status.summary);
    preview.statusPageURL = std::move(page);
    preview.endpoint = std::move(probe.endpoint);
    preview.adapter = std::move(probe.adapter);
    return preview;
}

} // namespace

Task<CustomProviderPreview> previewCustomProvider(
    std::string input, ProviderCheckDependencies dependencies, std::chrono::milliseconds timeout) {
    const WebURL page = eligiblePage(input);
    const TaskContext context = co_await currentContext();
    if (context.isCancelled()) throw CancellationError();
    auto resolving = resolve(page.host, dependencies);
    const DNSResolution resolution = co_await std::move(resolving);
    if (context.isCancelled()) throw CancellationError();
    requirePublic(resolution);

    const std::vector<Probe> probes = probesOf(page);
    if (probes.empty()) throw ProviderPreviewError(Category::unsupportedFormat, "No fixed probe is available.");
    ProviderFailures failures;
    for (const Probe& probe : probes) {
        if (context.isCancelled()) throw CancellationError();
        HTTPRequest request = makeStatusFeedRequest(probe.endpoint, statusFeedTimeout(timeout, probes.size()));
        SecureRequestPolicy policy = providerPolicy({probe.endpoint}, maximumStatusFeedBytes);
        auto asking = askStatusFeed(dependencies, std::move(request), std::move(policy), probe.adapter);
        StatusFeedAnswer answer = co_await std::move(asking);
        if (answer.kind == StatusFeedAnswer::Kind::KnownState)
            co_return previewOf(page, probe, std::move(answer.status));
        note(failures, probe.endpoint.path, answer);
    }
    throw ProviderPreviewError(
        failures.dominant(categoriesByWeight).value_or(Category::unsupportedFormat), failures.joined("\n"));
}

} // namespace kestrin
