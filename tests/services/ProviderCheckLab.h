#pragma once

#include "fakes/ManualExecutor.h"
#include "fakes/ScriptedFeeds.h"
#include "fakes/VirtualClock.h"
#include "services/FeedBodies.h"
#include "services/ProviderAdapters.h"
#include "services/ProviderChecker.h"
#include "tasks/Spawn.h"

namespace kestrin {

/// Checks of one service, "svc" at status.example.com, in a scripted network and in virtual time.
struct ProviderCheckLab {
    static constexpr const char* page = "https://status.example.com/";
    static constexpr const char* first = "https://status.example.com/api/v2/status.json";
    static constexpr const char* second = "https://status.example.com/api/v2/summary.json";

    VirtualClock clock;
    ManualExecutor executor;
    ScriptedFeeds feeds;
    std::chrono::sys_seconds today{
        std::chrono::sys_days{std::chrono::year(2026) / 1 / 31} + std::chrono::hours(9) + std::chrono::minutes(5)};
    ProviderChecker checker{clock, [this] { return today; }};

    static ProviderDefinition service(
        ProviderSource source = ProviderSource::custom, const std::string& adapter = "statuspage-v2") {
        ProviderDefinition service;
        service.id = "svc";
        service.name = "Service";
        service.adapter = {adapter, 1};
        service.publicStatusURL = webURL(page);
        service.statusURLs = statusEndpoints(service.publicStatusURL, adapter, 1);
        service.source = source;
        return service;
    }

    TaskHandle<ProviderCheckRecord> start(ProviderDefinition definition) {
        return spawn(
            executor, checker.checkProvider(std::move(definition), feeds.dependencies(), std::chrono::seconds(15)));
    }
    ProviderCheckRecord recordOf(ProviderDefinition definition = service()) {
        const auto check = start(std::move(definition));
        executor.runUntilIdle();
        return check.take();
    }

    /// What a failed check of `service()` leaves.
    static ProviderCheckRecord failure(const std::string& endpoint, std::optional<std::int64_t> httpStatus,
        ProviderFailureCategory category, const std::string& error) {
        ProviderCheckRecord record;
        record.timestamp = "2026-01-31T09:05:00Z";
        record.providerID = "svc";
        record.endpoint = endpoint;
        record.httpStatus = httpStatus;
        record.elapsedMS = 0;
        record.state = ProviderState::unknown;
        record.summary = "Status unavailable";
        record.error = error;
        record.failureCategory = category;
        return record;
    }
};

inline void PrintTo(const ProviderCheckRecord& record, std::ostream* out) {
    *out << record.timestamp << ' ' << record.providerID << ' ' << record.endpoint << " status "
         << (record.httpStatus ? std::to_string(*record.httpStatus) : "none") << " elapsed "
         << (record.elapsedMS ? std::to_string(*record.elapsedMS) : "none") << ' ' << persistedName(record.state)
         << " \"" << record.summary << "\" updated " << record.officialUpdatedAt.value_or("none") << " error \""
         << record.error.value_or("none") << "\" "
         << (record.failureCategory ? persistedName(*record.failureCategory) : "no category");
}

} // namespace kestrin
