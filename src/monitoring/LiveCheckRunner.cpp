#include "monitoring/LiveCheckRunner.h"

#include "tasks/Concurrently.h"
#include "tasks/FifoGate.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace kestrin {

namespace {

/// One kind of check and its places, which all its lists share.
template <class Record, class Definition> struct LimitedCheck {
    using Check = std::function<Task<Record>(Definition, std::chrono::milliseconds)>;

    Check check;
    FifoGate places{checksInFlightPerKind};

    /// As the bounded map calls it.
    Task<Record> operator()(Definition definition) const { return run(check, places, std::move(definition)); }

private:
    static Task<Record> run(Check check, FifoGate places, Definition definition) {
        const TaskContext context = co_await currentContext();
        const std::optional<FifoGate::Turn> place = co_await places.enter();
        // The map drops what comes after a cancellation, so nobody misses the check.
        if (!place || context.isCancelled()) co_return Record();
        Task<Record> checking = check(std::move(definition), checkTimeout);
        Record record = co_await std::move(checking);
        co_return record;
    }
};

// A multimap keeps what is equal in the order in which it came. The library's stable sort asks for a buffer by a
// function that it declares deprecated itself.
template <class Record>
std::vector<Record> sortedStably(std::vector<Record> records, std::string Record::* identifier) {
    std::multimap<std::string, Record> ordered;
    for (Record& record : records) {
        std::string id = record.*identifier;
        ordered.emplace(std::move(id), std::move(record));
    }
    records.clear();
    for (auto& [id, record] : ordered)
        records.push_back(std::move(record));
    return records;
}

template <class Record, class Definition>
Task<std::vector<Record>> runChecks(Executor& checkExecutor, LimitedCheck<Record, Definition> limited,
    std::vector<Definition> definitions, std::string Record::* identifier) {
    if (!limited.check) co_return std::vector<Record>();
    Task<std::vector<Record>> map = boundedMap(std::move(definitions), checksInFlightPerKind, std::move(limited));
    Task<std::vector<Record>> elsewhere = runOn(checkExecutor, std::move(map));
    std::vector<Record> records = co_await std::move(elsewhere);
    co_return sortedStably(std::move(records), identifier);
}

} // namespace

MonitoringCheckRunner liveCheckRunner(Executor& checkExecutor, SiteCheck checkSite, ProviderCheck checkProvider) {
    const LimitedCheck<CheckRecord, SiteDefinition> sites{std::move(checkSite)};
    const LimitedCheck<ProviderCheckRecord, ProviderDefinition> services{std::move(checkProvider)};
    return {
        .performSiteChecks =
            [&checkExecutor, sites](std::vector<SiteDefinition> definitions) {
                return runChecks(checkExecutor, sites, std::move(definitions), &CheckRecord::siteID);
            },
        .performProviderChecks =
            [&checkExecutor, services](std::vector<ProviderDefinition> definitions) {
                return runChecks(checkExecutor, services, std::move(definitions), &ProviderCheckRecord::providerID);
            },
    };
}

} // namespace kestrin
