#include "monitoring/LiveCheckRunner.h"

#include "tasks/Concurrently.h"

#include <algorithm>
#include <string>
#include <utility>

namespace kestrin {

namespace {

/// A check with the time-out bound to it, as the bounded map calls it.
template <class Record, class Definition, class Check> struct TimedCheck {
    Check check;
    Task<Record> operator()(Definition definition) const { return check(std::move(definition), checkTimeout); }
};

template <class Record, class Definition, class Check>
Task<std::vector<Record>> runChecks(
    Executor& checkExecutor, Check check, std::vector<Definition> definitions, std::string Record::* identifier) {
    TimedCheck<Record, Definition, Check> timed{std::move(check)};
    Task<std::vector<Record>> map = boundedMap(std::move(definitions), checksInFlightPerKind, std::move(timed));
    Task<std::vector<Record>> elsewhere = runOn(checkExecutor, std::move(map));
    std::vector<Record> records = co_await std::move(elsewhere);
    std::ranges::stable_sort(records, {}, identifier);
    co_return records;
}

} // namespace

MonitoringCheckRunner liveCheckRunner(Executor& checkExecutor, SiteCheck checkSite, ProviderCheck checkProvider) {
    return {
        .performSiteChecks =
            [&checkExecutor, checkSite](std::vector<SiteDefinition> sites) {
                return runChecks<CheckRecord>(checkExecutor, checkSite, std::move(sites), &CheckRecord::siteID);
            },
        .performProviderChecks =
            [&checkExecutor, checkProvider](std::vector<ProviderDefinition> services) {
                return runChecks<ProviderCheckRecord>(
                    checkExecutor, checkProvider, std::move(services), &ProviderCheckRecord::providerID);
            },
    };
}

} // namespace kestrin
