#include "dashboard/DashboardTest.h"
#include "dashboard/WebsitePagePresentation.h"

namespace kestrin {
namespace {

std::string periodOf(const std::vector<CheckRecord>& checks, const std::string& locale) {
    const auto page = websitePage(websiteWith(checks), std::nullopt, formatsOf(locale));
    return withPlainBlanks(page.incidents.at(0).period);
}

std::vector<CheckRecord> downThenUp() {
    return {checkAt("2026-01-31T09:05:00Z", false), checkAt("2026-01-31T09:20:00Z")};
}

std::vector<CheckRecord> stillDown() {
    return {checkAt("2026-01-31T09:05:00Z", false), checkAt("2026-01-31T09:20:00Z", false)};
}

TEST(IncidentRows, withoutAnyThereIsANote) {
    const auto page = websitePage(websiteWith({}), std::nullopt, formatsOf("en_US"));
    EXPECT_EQ(page.incidentsTitle, "Detected incidents");
    EXPECT_TRUE(page.incidents.empty());
    EXPECT_EQ(
        page.noIncidents, (NoteContent{"checkmark.circle", StateColor::secondary, "No failed periods recorded"}));
}

TEST(IncidentRows, aClosedOneHasRecovered) {
    const auto page = websitePage(websiteWith(downThenUp()), std::nullopt, formatsOf("de_DE"));
    ASSERT_EQ(page.incidents.size(), 1U);
    EXPECT_EQ(page.incidents[0], (IncidentRowContent{"checkmark.circle.fill", StateColor::green, "Recovered",
                                     "31. Jan. 2026, 09:05 – 09:20"}));
}

TEST(IncidentRows, oneThatLastsIsOngoingSinceItsFirstFailure) {
    const auto page = websitePage(websiteWith(stillDown()), std::nullopt, formatsOf("de_DE"));
    ASSERT_EQ(page.incidents.size(), 1U);
    EXPECT_EQ(page.incidents[0], (IncidentRowContent{"exclamationmark.circle.fill", StateColor::red, "Ongoing",
                                     "Since 31. Jan. 2026, 09:05"}));
}

TEST(IncidentRows, periodsFollowTheLocaleOfTimes) {
    EXPECT_EQ(periodOf(downThenUp(), "en_US"), "Jan 31, 2026, 9:05 AM – 9:20 AM");
    EXPECT_EQ(periodOf(downThenUp(), "ja_JP"), "2026年1月31日 9:05 – 9:20");
    EXPECT_EQ(periodOf(stillDown(), "ar_EG"), "Since ٣١ يناير ٢٠٢٦، ٩:٠٥ ص");
}

TEST(IncidentRows, anOngoingOneComesFirstAndAtMostThreeAreShown) {
    std::vector<CheckRecord> checks;
    for (int hour = 10; hour < 14; ++hour) {
        checks.push_back(checkAt("2026-01-31T" + std::to_string(hour) + ":00:00Z", false));
        checks.push_back(checkAt("2026-01-31T" + std::to_string(hour) + ":30:00Z"));
    }
    checks.push_back(checkAt("2026-01-31T14:00:00Z", false));
    const auto page = websitePage(websiteWith(checks), std::nullopt, formatsOf("de_DE"));
    ASSERT_EQ(page.incidents.size(), 3U);
    EXPECT_EQ(page.incidents[0].word, "Ongoing");
    EXPECT_EQ(page.incidents[1].period, "31. Jan. 2026, 13:00 – 13:30");
    EXPECT_EQ(page.incidents[2].period, "31. Jan. 2026, 12:00 – 12:30");
}

TEST(IncidentRows, momentsThatAreNoTimestampsAreShownAsTheyStandWithTheirOwnDirection) {
    EXPECT_EQ(periodOf({checkAt("yesterday", false)}, "en_US"), "Since \u2068yesterday\u2069");
    EXPECT_EQ(periodOf({checkAt("yesterday", false), checkAt("today")}, "en_US"),
        "\u2068yesterday\u2069 – \u2068today\u2069");
    EXPECT_EQ(periodOf({checkAt("2026-01-31T09:05:00Z", false), checkAt("today")}, "de_DE"),
        "31. Jan. 2026, 09:05 – \u2068today\u2069");
}

TEST(IncidentRows, oneWhoseEndIsNoTimestampHasRecoveredAllTheSame) {
    const auto page =
        websitePage(websiteWith({checkAt("yesterday", false), checkAt("today")}), std::nullopt, formatsOf("en_US"));
    EXPECT_EQ(page.incidents[0].word, "Recovered");
    EXPECT_EQ(page.incidents[0].color, StateColor::green);
}

} // namespace
} // namespace kestrin
