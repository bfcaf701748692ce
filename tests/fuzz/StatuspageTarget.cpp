#include "fuzz/FeedJudgement.h"
#include "fuzz/FuzzTarget.h"

// The input is a response of a Statuspage feed. What the adapter makes of it is what a second reading makes of it.

using namespace kestrin;

namespace {

std::optional<ParsedProviderStatus> opinion(const FeedWalk& feed) {
    const FeedWalk page = feed.object("page");
    const FeedWalk status = feed.object("status");
    ParsedProviderStatus expected = nothingKnown(page.text("name"), page.text("updated_at"));
    const std::string* const indicator = status.text("indicator");
    const std::string* const description = status.text("description");
    if (!page.isThere() || !status.isThere()) return std::nullopt;
    if (indicator == nullptr || description == nullptr) return expected;
    expected.summary = *description;
    if (isAnyOf(indicator, {"none", "operational"})) expected.state = ProviderState::operational;
    if (isAnyOf(indicator, {"minor", "degraded"})) expected.state = ProviderState::degraded;
    if (isAnyOf(indicator, {"major", "critical", "outage"})) expected.state = ProviderState::outage;
    if (isAnyOf(indicator, {"maintenance"})) expected.state = ProviderState::maintenance;
    return expected;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    judgeFeed(inputText(bytes, size), "statuspage-v2", opinion);
    return 0;
}
