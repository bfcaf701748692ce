#include "FeedReading.h"

#include <initializer_list>

namespace kestrin {
namespace {

JSONValue incident(const char* title, const char* type, const char* status) {
    return JSONValue::object({{"title", title}, {"type", type}, {"status", status}});
}

ParsedProviderStatus read(const char* status, std::initializer_list<JSONValue> incidents) {
    return readFeed("slack-status-v2", writeCompact(JSONValue::object({
                                           {"status", status},
                                           {"date_updated", "2026-01-31T09:05:00-08:00"},
                                           {"active_incidents", JSONValue::array(incidents)},
                                       })));
}

ParsedProviderStatus expected(ProviderState state, const std::string& summary) {
    return {state, summary, "2026-01-31T09:05:00-08:00", "Slack"};
}

const ParsedProviderStatus unknown = expected(ProviderState::unknown, "Unknown");
const ParsedProviderStatus operational = expected(ProviderState::operational, "All Systems Operational");

TEST(SlackFeed, okWithOnlyAScheduledNoticeIsOperational) {
    EXPECT_EQ(read("ok", {incident("Next week", "notice", "scheduled")}), operational);
}

TEST(SlackFeed, activeWithALiveNoticeIsDegraded) {
    EXPECT_EQ(read("active", {incident("Slow search", "notice", "active")}),
        expected(ProviderState::degraded, "Slow search"));
}

TEST(SlackFeed, activeWithALiveOutageAnywhereIsAnOutageNamedByTheFirstLiveEntry) {
    const JSONValue over = incident("Over", "incident", "resolved");
    const JSONValue notice = incident("Slow search", "notice", "active");
    const JSONValue outage = incident("No messages", "outage", "active");
    EXPECT_EQ(read("active", {over, notice, outage}), expected(ProviderState::outage, "Slow search"));
    EXPECT_EQ(read("active", {outage, over, notice}), expected(ProviderState::outage, "No messages"));
    EXPECT_EQ(read("active", {notice, outage, notice}), expected(ProviderState::outage, "Slow search"));
}

TEST(SlackFeed, withAnEmptyTitleIsUnknownEvenWhenOk) {
    EXPECT_EQ(read("ok", {incident("", "notice", "resolved")}), unknown);
    EXPECT_EQ(read("active", {incident("A", "notice", "active"), incident("", "notice", "active")}), unknown);
}

TEST(SlackFeed, activeWithNothingThatExplainsItIsUnknown) {
    EXPECT_EQ(read("active", {}), unknown);
    EXPECT_EQ(read("active", {incident("Over", "incident", "resolved")}), unknown);
    EXPECT_EQ(read("active", {incident("Soon", "notice", "scheduled"), incident("Over", "notice", "completed")}),
        unknown);
}

TEST(SlackFeed, activeWithAnnouncementsAloneIsOperational) {
    EXPECT_EQ(read("active", {incident("Soon", "notice", "scheduled")}), operational);
}

} // namespace
} // namespace kestrin
