#include "dashboard/WebsitePagePresentation.h"

#include "dashboard/DashboardTest.h"

namespace kestrin {
namespace {

WebsitePageContent pageOf(const SiteSnapshot& snapshot, const std::string& locale = "en_US") {
    return websitePage(snapshot, std::nullopt, formatsOf(locale));
}

CheckRecord answered(const std::string& timestamp, std::int64_t status, std::int64_t elapsedMS, bool up = true) {
    CheckRecord record = checkAt(timestamp, up);
    record.httpStatus = status;
    record.elapsedMS = elapsedMS;
    return record;
}

CheckRecord failed(const std::string& error) {
    CheckRecord record = checkAt("2026-01-31T09:05:00Z", false);
    record.error = error;
    return record;
}

TEST(WebsiteSummary, showsNameAndURL) {
    EXPECT_EQ(pageOf(websiteWith({})).summary.name, "Site a");
    EXPECT_EQ(pageOf(websiteWith({})).summary.url, "https://a.example.com/");
}

TEST(WebsiteSummary, aWebsiteWithoutChecksHasNoDataAndNoFigures) {
    const SiteSummaryContent summary = pageOf(websiteWith({})).summary;
    EXPECT_EQ(summary.badge, "NO DATA");
    EXPECT_EQ(summary.badgeColor, StateColor::secondary);
    EXPECT_EQ(summary.lastChecked, "No checks");
    const std::array<MetricValue, 3> expected = {{{"Sampled uptime", "—"}, {"Checks", "0"}, {"Response", "—"}}};
    EXPECT_EQ(summary.metrics, expected);
}

TEST(WebsiteSummary, theLastCheckDecidesBetweenUpAndDown) {
    const SiteSummaryContent up = pageOf(websiteWith({failed("x"), checkAt("2026-01-31T09:05:00Z")})).summary;
    EXPECT_EQ(up.badge, "UP");
    EXPECT_EQ(up.badgeColor, StateColor::green);
    const SiteSummaryContent down = pageOf(websiteWith({checkAt("2026-01-31T09:05:00Z"), failed("x")})).summary;
    EXPECT_EQ(down.badge, "DOWN");
    EXPECT_EQ(down.badgeColor, StateColor::red);
    EXPECT_EQ(withPlainBlanks(down.lastChecked), "9:05 AM");
}

TEST(WebsiteSummary, aDisabledWebsiteWithOldChecksSaysWhenItWasLastChecked) {
    SiteSnapshot snapshot = websiteWith({checkAt("2026-01-31T09:05:00Z")});
    snapshot.site.enabled = false;
    const SiteSummaryContent summary = pageOf(snapshot).summary;
    EXPECT_EQ(summary.badge, "DISABLED");
    EXPECT_EQ(summary.badgeColor, StateColor::secondary);
    EXPECT_EQ(withPlainBlanks(summary.lastChecked), "Last checked 9:05 AM");
}

TEST(WebsiteSummary, aDisabledWebsiteWithoutChecksIsDisabledFirst) {
    SiteSnapshot snapshot = websiteWith({});
    snapshot.site.enabled = false;
    EXPECT_EQ(pageOf(snapshot).summary.badge, "DISABLED");
    EXPECT_EQ(pageOf(snapshot).summary.lastChecked, "No checks");
}

TEST(WebsiteSummary, aTimestampThatIsNoneCountsAsNoChecks) {
    EXPECT_EQ(pageOf(websiteWith({checkAt("yesterday")})).summary.lastChecked, "No checks");
}

TEST(WebsiteSummary, oneOfThreeChecksUpIsAThirdInTheLocalesOwnWay) {
    const SiteSnapshot snapshot = websiteWith({failed("x"), answered("2026-01-31T09:05:00Z", 200, 1), failed("x")});
    EXPECT_EQ(pageOf(snapshot, "en_US").summary.metrics[0].value, "33.3%");
    EXPECT_EQ(withPlainBlanks(pageOf(snapshot, "de_DE").summary.metrics[0].value), "33,3 %");
    EXPECT_TRUE(pageOf(snapshot, "ar_EG").summary.metrics[0].value.starts_with("٣٣٫٣٪"));
    EXPECT_EQ(pageOf(snapshot, "ja_JP").summary.metrics[0].value, "33.3%");
}

TEST(WebsiteSummary, theUptimeIsThatOfAllChecksAndNotOfTheRecentOnes) {
    SiteSnapshot snapshot = websiteWith({failed("x")});
    snapshot.history.totalCheckCount = 12'345;
    snapshot.history.successfulCheckCount = 12'344;
    EXPECT_EQ(pageOf(snapshot).summary.metrics[0].value, "100.0%");
    EXPECT_EQ(pageOf(snapshot).summary.metrics[1].value, "12,345");
    EXPECT_EQ(pageOf(snapshot, "de_DE").summary.metrics[1].value, "12.345");
}

TEST(WebsiteSummary, theResponseIsThatOfTheLastCheck) {
    const auto response = [](const CheckRecord& last, const std::string& locale = "en_US") {
        const SiteSnapshot snapshot = websiteWith({answered("2026-01-31T09:00:00Z", 200, 5), last});
        return withPlainBlanks(pageOf(snapshot, locale).summary.metrics[2].value);
    };
    EXPECT_EQ(response(answered("2026-01-31T09:05:00Z", 200, 999)), "999ms");
    EXPECT_EQ(response(answered("2026-01-31T09:05:00Z", 200, 1000)), "1.0s");
    EXPECT_EQ(response(answered("2026-01-31T09:05:00Z", 200, 1000), "de_DE"), "1,0 Sek.");
    EXPECT_EQ(response(answered("2026-01-31T09:05:00Z", 503, 87, false)), "87ms");
    EXPECT_EQ(response(failed("No time was measured.")), "—");
}

TEST(RecentChecks, areTheLastFourNewestFirst) {
    std::vector<CheckRecord> checks;
    for (int minute = 1; minute <= 6; ++minute)
        checks.push_back(answered("2026-01-31T09:0" + std::to_string(minute) + ":00Z", 200 + minute, 10));
    const WebsitePageContent page = pageOf(websiteWith(checks));
    EXPECT_EQ(page.checksTitle, "Recent checks");
    ASSERT_EQ(page.checks.size(), 4U);
    EXPECT_EQ(page.checks.front().result, "HTTP 206");
    EXPECT_EQ(page.checks.back().result, "HTTP 203");
}

TEST(RecentChecks, withoutAnyThereIsAText) {
    EXPECT_TRUE(pageOf(websiteWith({})).checks.empty());
    EXPECT_EQ(pageOf(websiteWith({})).noChecks, "No checks recorded yet.");
}

TEST(RecentChecks, aCheckShowsItsStatusTimeAndDuration) {
    const CheckRowContent row = pageOf(websiteWith({answered("2026-01-31T10:42:00Z", 200, 204)})).checks[0];
    EXPECT_TRUE(row.up);
    EXPECT_EQ(row.result, "HTTP 200");
    EXPECT_EQ(withPlainBlanks(row.time), "10:42 AM");
    EXPECT_EQ(row.duration, "204ms");
    EXPECT_EQ(withPlainBlanks(row.accessibleName), "Up, HTTP 200, 10:42 AM, 204ms");
    EXPECT_EQ(withPlainBlanks(row.details), "Jan 31, 2026, 10:42 AM\nHTTP 200\n204ms");
}

TEST(RecentChecks, aCheckWithoutStatusShowsItsError) {
    const CheckRowContent row = pageOf(websiteWith({failed("The request timed out.")})).checks[0];
    EXPECT_FALSE(row.up);
    EXPECT_EQ(row.result, "The request timed out.");
    EXPECT_EQ(row.duration, "");
    EXPECT_EQ(withPlainBlanks(row.accessibleName), "Down, The request timed out., 9:05 AM");
}

TEST(RecentChecks, theStatusWinsOverTheError) {
    CheckRecord record = answered("2026-01-31T09:05:00Z", 503, 10, false);
    record.error = "HTTP 503";
    EXPECT_EQ(pageOf(websiteWith({record})).checks[0].result, "HTTP 503");
}

TEST(RecentChecks, aCheckWithNeitherStatusNorErrorHadNoResponse) {
    EXPECT_EQ(pageOf(websiteWith({checkAt("2026-01-31T09:05:00Z", false)})).checks[0].result, "No response");
}

TEST(RecentChecks, aTimestampThatIsNoneIsShownAsItStands) {
    EXPECT_EQ(pageOf(websiteWith({checkAt("yesterday")})).checks[0].time, "yesterday");
}

TEST(RecentChecks, textsOfAnyLengthFromAFileAreCutToWhatCanBeRead) {
    CheckRecord record = failed(std::string(8'000'000, '\n'));
    record.timestamp = std::string(1'000'000, 'x');
    SiteSnapshot snapshot = websiteWith({record});
    snapshot.site.url = "https://example.com/" + std::string(1'000'000, 'x');
    const WebsitePageContent page = pageOf(snapshot);
    EXPECT_LT(page.checks[0].result.size(), 500U);
    EXPECT_TRUE(page.checks[0].result.ends_with(" …"));
    EXPECT_LT(page.checks[0].time.size(), 100U);
    EXPECT_LT(page.checks[0].accessibleName.size(), 700U);
    EXPECT_LT(page.summary.url.size(), 2'100U);
    EXPECT_LT(page.incidents[0].period.size(), 100U);
}

} // namespace
} // namespace kestrin
