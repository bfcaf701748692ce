#include "services/ProviderChecker.h"

#include "destinations/AddressTable.h"
#include "probing/SecureHTTPError.h"
#include "services/ProviderAdapters.h"
#include "services/ProviderFailure.h"
#include "services/ProviderFailures.h"
#include "services/StatusFeedAnswer.h"
#include "services/StatusFeedRequest.h"
#include "tasks/CancellationError.h"
#include "text/Timestamp.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

namespace {

using Category = ProviderFailureCategory;

constexpr std::array categoriesByWeight = {Category::unsafeDestination, Category::changedSchema,
    Category::unsupportedFormat, Category::malformed, Category::unavailable, Category::unreachable};

const char* defaultSummary(ProviderSource source) {
    return source == ProviderSource::bundledOfficial ? "Official status unavailable" : "Status unavailable";
}

std::vector<std::string> distinctHosts(const std::vector<WebURL>& urls) {
    std::vector<std::string> hosts;
    for (const WebURL& url : urls)
        if (std::ranges::find(hosts, url.host) == hosts.end()) hosts.push_back(url.host);
    return hosts;
}

/// Throws for the first host that is not known to be public throughout.
Task<> requirePublicHosts(std::vector<std::string> hosts, ProviderCheckDependencies dependencies) {
    const TaskContext context = co_await currentContext();
    for (const std::string& host : hosts) {
        if (context.isCancelled()) throw CancellationError();
        auto resolving = dependencies.resolveHost(host);
        const DNSResolution resolution = co_await std::move(resolving);
        if (context.isCancelled()) throw CancellationError();
        if (allAddressesPublic(resolution.ok, resolution.ips)) continue;
        throw SecureHTTPError::privateDestination(
            host + ": " + resolution.error.value_or("Private or reserved network destination blocked"));
    }
}

/// Notes why the endpoint at `path` gave no state.
void note(ProviderFailures& failures, const std::string& path, const StatusFeedAnswer& answer) {
    using Kind = StatusFeedAnswer::Kind;
    switch (answer.kind) {
    case Kind::Failed:
        return failures.add(path + ": " + answer.failure.description, answer.failure.category);
    case Kind::OtherStatus:
        return failures.add(
            path + ": HTTP " + std::to_string(answer.httpStatus.value_or(0)), Category::unavailable);
    case Kind::OtherContentType:
        return failures.add(path + ": unsupported Content-Type", Category::unsupportedFormat);
    case Kind::Unrecognized:
        return failures.add(path + ": status format not recognized", Category::changedSchema);
    case Kind::Malformed:
        return failures.add(path + ": malformed current status data", Category::malformed);
    case Kind::UnknownState:
        return failures.add(path + ": unrecognized status", Category::changedSchema);
    case Kind::KnownState:
        return;
    }
}

/// Fills `record`, which its caller keeps, and throws what stopped the check before or between its requests. What
/// an unknown status said enters the record at the end alone: a cancelled check tells nothing of it.
Task<> observe(ProviderDefinition definition, ProviderCheckDependencies dependencies,
    std::chrono::milliseconds timeout, ProviderCheckRecord& record) {
    const ProviderAdapterIdentity adapter = definition.adapter;
    const std::vector<WebURL> endpoints = std::move(definition.statusURLs);
    if (endpoints.empty() || !isSupportedProviderAdapter(adapter.id, adapter.version))
        throw SecureHTTPError::invalidDestination("Unsupported status adapter");
    const SecureRequestPolicy policy = providerPolicy(endpoints, maximumStatusFeedBytes);
    auto judging = requirePublicHosts(distinctHosts(endpoints), dependencies);
    co_await std::move(judging);

    ProviderFailures failures;
    std::optional<ParsedProviderStatus> unknownStatus;
    for (const WebURL& endpoint : endpoints) {
        record.endpoint = endpoint.text;
        HTTPRequest request = makeStatusFeedRequest(endpoint, statusFeedTimeout(timeout, endpoints.size()));
        auto asking = askStatusFeed(dependencies, std::move(request), policy, adapter);
        StatusFeedAnswer answer = co_await std::move(asking);
        if (answer.httpStatus) record.httpStatus = answer.httpStatus;
        if (answer.kind == StatusFeedAnswer::Kind::KnownState) {
            record.state = answer.status.state;
            record.summary = std::move(answer.status.summary);
            record.officialUpdatedAt = std::move(answer.status.officialUpdatedAt);
            co_return;
        }
        note(failures, endpoint.path, answer);
        if (answer.kind == StatusFeedAnswer::Kind::UnknownState) unknownStatus = std::move(answer.status);
    }

    if (unknownStatus) {
        record.summary = std::move(unknownStatus->summary);
        record.officialUpdatedAt = std::move(unknownStatus->officialUpdatedAt);
    }
    record.error = failures.joined("; ");
    record.failureCategory = failures.dominant(categoriesByWeight);
}

} // namespace

ProviderChecker::ProviderChecker(Clock& clock, WallClock wallClock) : parts_{clock, std::move(wallClock)} {}

Task<ProviderCheckRecord> ProviderChecker::checkProvider(ProviderDefinition definition,
    ProviderCheckDependencies dependencies, std::chrono::milliseconds timeout) const {
    return check(parts_, std::move(definition), std::move(dependencies), timeout);
}

Task<ProviderCheckRecord> ProviderChecker::check(Parts parts, ProviderDefinition definition,
    ProviderCheckDependencies dependencies, std::chrono::milliseconds timeout) {
    const Instant start = parts.clock.now();
    ProviderCheckRecord record;
    record.providerID = definition.id;
    record.endpoint =
        (definition.statusURLs.empty() ? definition.publicStatusURL : definition.statusURLs.front()).text;
    record.summary = defaultSummary(definition.source);
    try {
        auto observing = observe(std::move(definition), std::move(dependencies), timeout, record);
        co_await std::move(observing);
    } catch (...) {
        ProviderFailure failure = currentFailure();
        record.error = std::move(failure.description);
        record.failureCategory = failure.category;
    }
    record.elapsedMS = std::chrono::duration_cast<std::chrono::milliseconds>(parts.clock.now() - start).count();
    record.timestamp = timestampText(parts.wallClock());
    co_return record;
}

} // namespace kestrin
