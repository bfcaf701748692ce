#include "FeedReading.h"

namespace kestrin {
namespace {

/// A feed with that status, written as JSON.
ParsedProviderStatus read(const std::string& status) {
    return readFeed("statuspage-v2",
        R"({"page":{"name":"Example","updated_at":"2026-01-31T09:05:00Z"},"status":)" + status + "}");
}

ParsedProviderStatus expected(ProviderState state, const std::string& summary) {
    return {state, summary, "2026-01-31T09:05:00Z", "Example"};
}

std::string described(const std::string& description) {
    return R"({"indicator":"none","description":")" + description + R"("})";
}

TEST(StatuspageFeed, withTheIndicatorInCapitalsAndAnEmptyDescriptionIsOperationalByTitle) {
    EXPECT_EQ(
        read(R"({"indicator":"NONE","description":""})"), expected(ProviderState::operational, "Operational"));
}

TEST(StatuspageFeed, withAnUnknownIndicatorIsUnknownWithItsDescription) {
    EXPECT_EQ(read(R"({"indicator":"purple","description":"All is well"})"),
        expected(ProviderState::unknown, "All is well"));
}

TEST(StatuspageFeed, whoseStatusIsEmptyIsUnknownWithPageNameAndTime) {
    EXPECT_EQ(read("{}"), expected(ProviderState::unknown, "Unknown"));
}

TEST(StatuspageFeed, hasSingleBlanksForTabsLineFeedsAndZeroWidthCharactersInItsDescription) {
    EXPECT_EQ(read(described(R"(\tAll  \n\r\n systems\u200B\u200boperational\u2060 \u00AD today\uFEFF)")).summary,
        "All systems operational today");
}

TEST(StatuspageFeed, isCutTo160LettersOfADescriptionOf200) {
    EXPECT_EQ(read(described(std::string(200, 'd'))).summary, std::string(160, 'd'));
    EXPECT_EQ(read(described(std::string(160, 'd'))).summary, std::string(160, 'd'));
}

TEST(StatuspageFeed, isJudgedByItsTypesBeforeItsCompleteness) {
    EXPECT_EQ(refusalOf("statuspage-v2", R"({"page":{"name":1}})"), ProviderAdapterParseError::Kind::malformed);
    EXPECT_EQ(
        refusalOf("statuspage-v2", R"({"page":{"name":"x"}})"), ProviderAdapterParseError::Kind::unrecognized);
}

TEST(StatuspageFeed, keepsItsTimeLetterByLetterAtAnyLength) {
    const std::string time = "\t\u202E soon " + std::string(100000, 't');
    const JSONValue feed = JSONValue::object({
        {"page", JSONValue::object({{"updated_at", time}})},
        {"status", JSONValue::object({{"indicator", "none"}, {"description", "x"}})},
    });
    EXPECT_EQ(readFeed("statuspage-v2", writeCompact(feed)).officialUpdatedAt, time);
}

} // namespace
} // namespace kestrin
