#include "fuzz/FeedJudgement.h"
#include "fuzz/FuzzTarget.h"

// The input is a response of a Better Stack feed. What the adapter makes of it is what a second reading makes of
// it.

using namespace kestrin;

namespace {

std::optional<ParsedProviderStatus> opinion(const FeedWalk& feed) {
    const FeedWalk data = feed.object("data");
    const FeedWalk attributes = data.object("attributes");
    const std::string* const type = data.text("type");
    const std::string* const aggregate = attributes.text("aggregate_state");
    ParsedProviderStatus expected = nothingKnown(attributes.text("company_name"), attributes.text("updated_at"));
    if (!data.isThere()) return std::nullopt;
    if (type == nullptr || *type != "status_page") return expected;
    if (isAnyOf(aggregate, {"operational"})) expected.state = ProviderState::operational;
    if (isAnyOf(aggregate, {"degraded"})) expected.state = ProviderState::degraded;
    if (isAnyOf(aggregate, {"downtime"})) expected.state = ProviderState::outage;
    if (isAnyOf(aggregate, {"maintenance"})) expected.state = ProviderState::maintenance;
    return expected;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    judgeFeed(inputText(bytes, size), "betterstack-index", opinion);
    return 0;
}
