#include "dashboard/ResponseHistoryPresentation.h"

#include "dashboard/DashboardTest.h"

#include <cstdint>
#include <limits>
#include <optional>

namespace kestrin {
namespace {

CheckRecord success(std::optional<std::int64_t> elapsedMS) {
    CheckRecord record = checkAt("2026-01-31T09:05:00Z");
    record.elapsedMS = elapsedMS;
    return record;
}

CheckRecord failure(std::optional<std::int64_t> elapsedMS = std::nullopt) {
    CheckRecord record = success(elapsedMS);
    record.up = false;
    return record;
}

ResponseHistoryPresentation historyOf(const std::vector<CheckRecord>& checks) {
    return ResponseHistoryPresentation::of(websiteWith(checks).history);
}

ResponseChartContent chartOf(const std::vector<CheckRecord>& checks, const std::string& locale = "en_US") {
    return responseChart(historyOf(checks), formatsOf(locale));
}

std::vector<std::int64_t> heightsOf(const std::vector<CheckRecord>& checks) {
    std::vector<std::int64_t> heights;
    for (const auto& bar : historyOf(checks).bars)
        heights.push_back(bar.plottedValue);
    return heights;
}

using Heights = std::vector<std::int64_t>;

TEST(ResponseHistory, withoutChecksThereIsNoChartButOnlyTheText) {
    const ResponseChartContent chart = chartOf({});
    EXPECT_TRUE(chart.bars.empty());
    EXPECT_EQ(chart.noChecks, "No checks recorded yet.");
    EXPECT_EQ(chart.title, "Recent response history");
    EXPECT_EQ(chart.domainStart, -0.5);
    EXPECT_EQ(chart.domainEnd, 0.5);
}

TEST(ResponseHistory, oneCheckIsOneBarInADomainOfOneSlot) {
    const ResponseChartContent chart = chartOf({success(100)});
    ASSERT_EQ(chart.bars.size(), 1U);
    EXPECT_EQ(chart.domainStart, -0.5);
    EXPECT_EQ(chart.domainEnd, 0.5);
}

TEST(ResponseHistory, everyBarHasASlotOfItsOwn) {
    const ResponseChartContent chart = chartOf({success(100), failure(), success(200)});
    EXPECT_EQ(chart.domainEnd, 2.5);
    EXPECT_EQ(chart.bars[0].position, 0.0);
    EXPECT_EQ(chart.bars[2].position, 2.0);
}

TEST(ResponseHistory, ofThirtyOneChecksTheOldestIsNotDrawn) {
    SiteHistoryProjection history;
    for (int index = 0; index < 31; ++index)
        history.recentChecks.push_back(success(100 + index));
    const ResponseHistoryPresentation presentation = ResponseHistoryPresentation::of(history);
    ASSERT_EQ(presentation.bars.size(), 30U);
    EXPECT_EQ(presentation.bars.front().plottedValue, 101);
    EXPECT_EQ(presentation.bars.back().plottedValue, 130);
    const ResponseChartContent chart = responseChart(presentation, formatsOf("en_US"));
    EXPECT_EQ(chart.countLabel, "Last 30 checks");
    EXPECT_EQ(chart.domainEnd, 29.5);
}

TEST(ResponseHistory, whereAllChecksFailedEveryBarIs50HighAndFailed) {
    EXPECT_EQ(heightsOf({failure(), failure(900), failure()}), (Heights{50, 50, 50}));
    for (const ChartBar& bar : chartOf({failure(), failure(900), failure()}).bars)
        EXPECT_FALSE(bar.up);
}

TEST(ResponseHistory, aSuccessOf12MsAndAFailureAreBoth50High) {
    EXPECT_EQ(heightsOf({success(12), failure()}), (Heights{50, 50}));
}

TEST(ResponseHistory, aFailureIsAsTallAsTheTallestSuccess) {
    EXPECT_EQ(heightsOf({success(800), success(200), failure()}), (Heights{800, 200, 800}));
}

TEST(ResponseHistory, aSuccessWithoutTimeNeverSetsTheScale) {
    EXPECT_EQ(heightsOf({success(std::nullopt), failure()}), (Heights{50, 50}));
    EXPECT_EQ(heightsOf({success(std::nullopt), success(300), failure()}), (Heights{50, 300, 300}));
}

TEST(ResponseHistory, theTimeOfAFailureIsNotUsed) {
    EXPECT_EQ(heightsOf({success(200), failure(15'000)}), (Heights{200, 200}));
}

TEST(ResponseHistory, survivesAnyElapsedTime) {
    constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t shortest = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(heightsOf({success(longest), success(shortest), success(-1), failure(shortest)}),
        (Heights{longest, 50, 50, longest}));
    EXPECT_EQ(chartOf({success(longest), success(shortest)}).bars.size(), 2U);
}

TEST(ResponseHistory, aBarKeepsTheCheckItStandsFor) {
    const CheckRecord check = failure(12);
    EXPECT_EQ(historyOf({success(1), check}).bars[1].check, check);
}

TEST(ResponseHistory, theLegendNamesBothColoursAndTheCount) {
    const ResponseChartContent chart = chartOf({success(100), failure()});
    EXPECT_EQ(chart.successfulLabel, "Successful");
    EXPECT_EQ(chart.failedLabel, "Failed");
    EXPECT_EQ(chart.countLabel, "Last 2 checks");
    EXPECT_TRUE(chart.bars[0].up);
    EXPECT_FALSE(chart.bars[1].up);
}

TEST(ResponseHistory, theChartAsAWholeSaysHowManySucceeded) {
    EXPECT_EQ(
        chartOf({success(1), failure(), success(1)}).accessibleLabel, "Last 3 checks: 2 successful, 1 failed.");
    EXPECT_EQ(chartOf({success(1), failure(), success(1)}, "ar_EG").accessibleLabel,
        "Last ٣ checks: ٢ successful, ١ failed.");
}

TEST(ResponseHistory, aBarHasMomentResultDurationAndAddressesOnALineEach) {
    CheckRecord record = success(1500);
    record.httpStatus = 204;
    record.ips = {"192.88.99.10", "2001:db8::1"};
    EXPECT_EQ(withPlainBlanks(chartOf({record}).bars[0].details),
        "Jan 31, 2026, 9:05 AM\nHTTP 204\n1.5s\n192.88.99.10, 2001:db8::1");
    EXPECT_EQ(withPlainBlanks(chartOf({failure()}).bars[0].details), "Jan 31, 2026, 9:05 AM\nNo response");
}

TEST(ResponseHistory, aMillionAddressesOfMuchTextAreCutShort) {
    CheckRecord record = success(1);
    record.ips.assign(1'000'000, std::string(100, '1'));
    const std::string details = chartOf({record}).bars[0].details;
    EXPECT_LT(details.size(), 1'000U);
    EXPECT_TRUE(details.ends_with(", …")) << details;
}

} // namespace
} // namespace kestrin
