#include "FeedReading.h"

namespace kestrin {
namespace {

ParsedProviderStatus read(const std::string& type, const std::string& aggregateState) {
    return readFeed("betterstack-index", R"({"data":{"type":")" + type +
                                             R"(","attributes":{"company_name":"Example","aggregate_state":")" +
                                             aggregateState + R"(","updated_at":"2026-01-31T09:05:00.000Z"}}})");
}

ParsedProviderStatus expected(ProviderState state) {
    return {state, std::string(title(state)), "2026-01-31T09:05:00.000Z", "Example"};
}

TEST(BetterStackFeed, whoseTypeDiffersInCaseAloneIsUnknown) {
    EXPECT_EQ(read("Status_page", "operational"), expected(ProviderState::unknown));
    EXPECT_EQ(read("status_page", "operational"), expected(ProviderState::operational));
}

TEST(BetterStackFeed, withDowntimeInCapitalsIsAnOutage) {
    EXPECT_EQ(read("status_page", "DOWNTIME"), expected(ProviderState::outage));
}

TEST(BetterStackFeed, isNotAnOutageByTheWordOutage) {
    EXPECT_EQ(read("status_page", "outage"), expected(ProviderState::unknown));
}

} // namespace
} // namespace kestrin
