#pragma once

#include "model/CheckRecord.h"
#include "model/SiteConfiguration.h"
#include "probing/BackgroundResolver.h"
#include "probing/FreshHTTPClient.h"
#include "tasks/Clock.h"
#include "tasks/Task.h"

#include <chrono>
#include <cstdint>
#include <functional>

namespace kestrin {

/// The request of a website check: what it says and asks for, and that no cache may answer it.
[[nodiscard]] HTTPRequest makeCheckRequest(const WebURL& url, std::chrono::milliseconds timeout);

/// Whether a website that answered so is up: 200 to 399. A redirect with a target never comes here.
[[nodiscard]] bool statusIsUp(std::int64_t status);

/// Checks one website: judges its URL, resolves its name, refuses private answers and asks for the head of one
/// response. Holds no state of its own; any number of checks at once, any thread.
class WebsiteChecker {
public:
    /// The time of day, for time stamps.
    using WallClock = std::function<std::chrono::sys_seconds()>;

    WebsiteChecker(FreshHTTPClient client, BackgroundResolver resolver, Clock& clock, WallClock wallClock);

    /// Always gives a record, never throws: whatever went wrong, a cancellation included, is in the record. The
    /// record of a cancelled check comes when the name resolution in progress ends or has been given up.
    /// `elapsedMS` counts from here.
    [[nodiscard]] Task<CheckRecord> checkWebsite(SiteDefinition site, std::chrono::milliseconds timeout) const;

private:
    struct Parts {
        FreshHTTPClient client;
        BackgroundResolver resolver;
        Clock& clock;
        WallClock wallClock;
    };
    static Task<CheckRecord> check(Parts parts, SiteDefinition site, std::chrono::milliseconds timeout);
    static Task<> observe(Parts parts, CheckRecord& record, std::chrono::milliseconds timeout);

    Parts parts_;
};

} // namespace kestrin
