#include "fuzz/FeedJudgement.h"
#include "fuzz/FuzzTarget.h"

// The input is a response of the Slack status API. What the adapter makes of it is what a second reading makes of
// it: one that counts before it decides.

using namespace kestrin;

namespace {

struct Count {
    std::size_t all = 0;
    std::size_t scheduled = 0;
    const std::string* firstLive = nullptr;
    bool anyOutage = false;
    bool anyWrong = false;
};

/// Reads all three of each, so that a wrong type is found wherever it stands.
Count countOfIncidents(const FeedWalk& feed) {
    Count count;
    for (const FeedWalk& incident : feed.list("active_incidents")) {
        const std::string* const title = incident.text("title");
        const std::string* const type = incident.text("type");
        const std::string* const status = incident.text("status");
        const bool live = isAnyOf(status, {"active"});
        ++count.all;
        if (isAnyOf(status, {"scheduled"})) ++count.scheduled;
        if (title == nullptr || *title == "" || !isAnyOf(type, {"incident", "notice", "outage"}) ||
            !isAnyOf(status, {"active", "resolved", "completed", "cancelled", "scheduled"}))
            count.anyWrong = true;
        if (live && count.firstLive == nullptr) count.firstLive = title;
        if (live && isAnyOf(type, {"outage"})) count.anyOutage = true;
    }
    return count;
}

std::optional<ParsedProviderStatus> opinion(const FeedWalk& feed) {
    const std::string slack = "Slack";
    const std::string* const status = feed.text("status");
    ParsedProviderStatus expected = nothingKnown(&slack, feed.text("date_updated"));
    const Count incidents = countOfIncidents(feed);
    if (status == nullptr) return std::nullopt;
    if (incidents.anyWrong) return expected;
    const bool active = isAnyOf(status, {"active"});
    if (active && incidents.firstLive != nullptr) {
        expected.state = incidents.anyOutage ? ProviderState::outage : ProviderState::degraded;
        expected.summary = *incidents.firstLive;
        return expected;
    }
    const bool onlyScheduled = incidents.all > 0 && incidents.scheduled == incidents.all;
    if ((isAnyOf(status, {"ok"}) && incidents.firstLive == nullptr) || (active && onlyScheduled)) {
        expected.state = ProviderState::operational;
        expected.summary = "All Systems Operational";
    }
    return expected;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    judgeFeed(inputText(bytes, size), "slack-status-v2", opinion);
    return 0;
}
