#include "fuzz/FeedJudgement.h"
#include "fuzz/FuzzTarget.h"

// The input is a response of an Instatus feed. What the adapter makes of it is what a second reading makes of it:
// one that counts before it decides.

using namespace kestrin;

namespace {

struct Count {
    const std::string* firstLive = nullptr;
    bool anyMajor = false;
    bool anyWrong = false;
};

/// Reads all three of each, so that a wrong type is found wherever it stands.
Count countOfIncidents(const FeedWalk& feed) {
    Count count;
    for (const FeedWalk& incident : feed.list("activeIncidents")) {
        const std::string* const name = incident.text("name");
        const std::string* const status = incident.text("status");
        const std::string* const impact = incident.text("impact");
        const bool live = isAnyOf(status, {"investigating", "identified", "monitoring"});
        const bool known = isAnyOf(impact, {"majoroutage", "partialoutage", "minoroutage", "degradedperformance"});
        if (name == nullptr || impact == nullptr || !(isAnyOf(status, {"resolved"}) || (live && known)))
            count.anyWrong = true;
        if (live && count.firstLive == nullptr) count.firstLive = name;
        if (live && isAnyOf(impact, {"majoroutage"})) count.anyMajor = true;
    }
    return count;
}

struct MaintenanceCount {
    std::size_t all = 0;
    const std::string* firstRunning = nullptr;
    bool anyWrong = false;
};

MaintenanceCount countOfMaintenances(const FeedWalk& feed) {
    MaintenanceCount count;
    for (const FeedWalk& maintenance : feed.list("activeMaintenances")) {
        const std::string* const name = maintenance.text("name");
        const std::string* const status = maintenance.text("status");
        ++count.all;
        if (name == nullptr || !isAnyOf(status, {"notstartedyet", "inprogress", "completed"}))
            count.anyWrong = true;
        if (isAnyOf(status, {"inprogress"}) && count.firstRunning == nullptr) count.firstRunning = name;
    }
    return count;
}

std::optional<ParsedProviderStatus> opinion(const FeedWalk& feed) {
    const FeedWalk page = feed.object("page");
    const std::string* const status = page.text("status");
    ParsedProviderStatus expected = nothingKnown(page.text("name"), nullptr);
    const Count incidents = countOfIncidents(feed);
    const MaintenanceCount maintenances = countOfMaintenances(feed);
    if (!page.isThere()) return std::nullopt;
    if (incidents.anyWrong) return expected;
    const bool underMaintenance = isAnyOf(status, {"undermaintenance"});
    if (incidents.firstLive != nullptr) {
        if (!underMaintenance && !isAnyOf(status, {"hasissues"})) return expected;
        expected.state = incidents.anyMajor ? ProviderState::outage : ProviderState::degraded;
        expected.summary = *incidents.firstLive;
    } else if (isAnyOf(status, {"up"})) {
        expected.state = ProviderState::operational;
    } else if (underMaintenance && !maintenances.anyWrong) {
        if (maintenances.all > 0 && maintenances.firstRunning == nullptr) return expected;
        expected.state = ProviderState::maintenance;
        if (maintenances.firstRunning != nullptr) expected.summary = *maintenances.firstRunning;
    }
    return expected;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    judgeFeed(inputText(bytes, size), "instatus-summary", opinion);
    return 0;
}
