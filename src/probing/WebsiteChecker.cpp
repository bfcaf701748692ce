#include "probing/WebsiteChecker.h"

#include "destinations/AddressTable.h"
#include "destinations/WebsiteURLPolicy.h"
#include "model/MessageError.h"
#include "tasks/CancellationError.h"
#include "text/Timestamp.h"

#include <string>
#include <utility>

namespace kestrin {

HTTPRequest makeCheckRequest(const WebURL& url, std::chrono::milliseconds timeout) {
    HTTPRequest request;
    request.url = url;
    request.headers = {
        {"User-Agent", "kestrin-macos/2.0"},
        {"Cache-Control", "no-cache, no-store, max-age=0"},
        {"Pragma", "no-cache"},
    };
    request.timeout = timeout;
    return request;
}

bool statusIsUp(std::int64_t status) {
    return static_cast<std::uint64_t>(status) - 200 < 200;
}

WebsiteChecker::WebsiteChecker(
    FreshHTTPClient client, BackgroundResolver resolver, Clock& clock, WallClock wallClock)
    : parts_{std::move(client), std::move(resolver), clock, std::move(wallClock)} {}

Task<CheckRecord> WebsiteChecker::checkWebsite(SiteDefinition site, std::chrono::milliseconds timeout) const {
    return check(parts_, std::move(site), timeout);
}

Task<CheckRecord> WebsiteChecker::check(Parts parts, SiteDefinition site, std::chrono::milliseconds timeout) {
    const Instant start = parts.clock.now();
    CheckRecord record;
    record.siteID = site.id;
    record.url = site.url;
    try {
        auto observing = observe(parts, record, timeout);
        co_await std::move(observing);
    } catch (const MessageError& failure) {
        record.error = failure.message;
    } catch (const CancellationError& cancellation) {
        record.error = cancellation.what();
    } catch (...) {
        // A broken resolver or transport must not end the run of all other checks.
        record.error = "The request failed.";
    }
    record.elapsedMS = std::chrono::duration_cast<std::chrono::milliseconds>(parts.clock.now() - start).count();
    record.timestamp = timestampText(parts.wallClock());
    co_return record;
}

/// Fills `record`, which its caller keeps, as far as the check comes, and throws what stopped it.
Task<> WebsiteChecker::observe(Parts parts, CheckRecord& record, std::chrono::milliseconds timeout) {
    const WebURL url = validatedWebsiteURL(record.url);
    static_cast<void>(websitePolicy(url));

    auto resolving = parts.resolver.resolveHostInBackground(url.host);
    const DNSResolution resolution = co_await std::move(resolving);
    record.dnsOK = resolution.ok;
    record.ips = resolution.ips;
    if (!resolution.ok) {
        record.error = resolution.error.value_or("Invalid URL");
        co_return;
    }
    if (!allAddressesPublic(resolution.ok, resolution.ips)) {
        record.error = "Private or reserved network destination blocked";
        co_return;
    }

    HTTPRequest request = makeCheckRequest(url, timeout);
    SecureRequestPolicy policy = websitePolicy(url);
    // The client resolves the name once more, so that an answer that has changed since is judged too.
    auto fetching = parts.client.fetch(std::move(request), std::move(policy));
    const FreshHTTPResponse response = co_await std::move(fetching);
    record.httpStatus = response.statusCode;
    record.up = statusIsUp(response.statusCode);
    if (!record.up) record.error = "HTTP " + std::to_string(response.statusCode);
}

} // namespace kestrin
