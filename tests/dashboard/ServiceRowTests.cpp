#include "dashboard/ServiceRowPresentation.h"

#include "dashboard/DashboardTest.h"

namespace kestrin {
namespace {

using enum ProviderState;
using enum ProviderFailureCategory;

constexpr const char* moment = "2026-01-31T09:05:00Z";
constexpr const char* formatChanged =
    "Status format changed. Remove and add this source again after updating Kestrin.";
constexpr const char* notRefreshed = "Couldn’t refresh this status service. Its current status is Unknown.";

ServiceRowContent rowOf(const ProviderSnapshot& snapshot, const std::string& locale = "en_US") {
    return serviceRow(snapshot, formatsOf(locale));
}

ProviderCheckRecord failureOf(std::optional<ProviderFailureCategory> category) {
    ProviderCheckRecord record = reportAt(moment, unknown);
    record.failureCategory = category;
    return record;
}

ProviderSnapshot added(std::vector<ProviderCheckRecord> records) {
    ProviderSnapshot snapshot = serviceWith(std::move(records));
    snapshot.provider.source = ProviderSource::custom;
    return snapshot;
}

TEST(ServiceRow, aServiceWithoutRecordsIsUnknownAndNotChecked) {
    const ServiceRowContent row = rowOf(serviceWith({}));
    EXPECT_EQ(row.id, "openai");
    EXPECT_EQ(row.name, "OpenAI");
    EXPECT_EQ(row.state, "Unknown");
    EXPECT_EQ(row.symbol, "questionmark.circle.fill");
    EXPECT_EQ(row.color, StateColor::secondary);
    EXPECT_EQ(row.summary, "No status recorded yet");
    EXPECT_EQ(row.lastChecked, "Not checked");
    EXPECT_TRUE(row.history.empty());
    EXPECT_EQ(row.historyTitle, "");
    EXPECT_EQ(row.historyAccessibleLabel, "");
    EXPECT_EQ(row.noHistory, "Run Check now to fetch published status");
    EXPECT_FALSE(row.failure);
}

TEST(ServiceRow, showsWhatWasLastPublished) {
    ProviderCheckRecord record = reportAt(moment, degraded);
    record.summary = "Elevated errors";
    record.elapsedMS = 87;
    const ServiceRowContent row = rowOf(serviceWith({record}));
    EXPECT_EQ(row.state, "Degraded");
    EXPECT_EQ(row.symbol, "exclamationmark.triangle.fill");
    EXPECT_EQ(row.color, StateColor::orange);
    EXPECT_EQ(row.summary, "Elevated errors");
    EXPECT_EQ(withPlainBlanks(row.lastChecked), "Checked 9:05 AM · 87ms");
    EXPECT_EQ(row.historyTitle, "Recent published status history");
    EXPECT_EQ(row.noHistory, "");
}

TEST(ServiceRow, aRecordWithoutDurationSaysTheTimeAlone) {
    EXPECT_EQ(rowOf(serviceWith({reportAt(moment, operational)}), "de_DE").lastChecked, "Checked 09:05");
    EXPECT_EQ(rowOf(serviceWith({reportAt(moment, operational)}), "ar_EG").lastChecked, "Checked ٩:٠٥ ص");
}

TEST(ServiceRow, aTimestampThatIsNoneIsShownAsItStandsWithItsOwnDirection) {
    EXPECT_EQ(
        rowOf(serviceWith({reportAt("yesterday", operational)})).lastChecked, "Checked \u2068yesterday\u2069");
}

TEST(ServiceRow, theStripHasTheLast24RecordsOldestFirst) {
    ProviderSnapshot snapshot = serviceWith({});
    for (int index = 0; index < 26; ++index)
        snapshot.history.recentChecks.push_back(reportAt(moment, index < 2    ? outage
                                                                 : index == 2 ? maintenance
                                                                              : operational));
    const ServiceRowContent row = rowOf(snapshot);
    ASSERT_EQ(row.history.size(), 24U);
    EXPECT_EQ(row.history[0].color, StateColor::blue);
    EXPECT_FALSE(row.history[0].isOperational);
    EXPECT_EQ(row.history[23].color, StateColor::green);
    EXPECT_TRUE(row.history[23].isOperational);
    EXPECT_EQ(row.historyAccessibleLabel,
        "Last 24 reports: 23 operational, 0 degraded, 0 outage, 1 maintenance, 0 unknown");
}

TEST(ServiceRow, theStripCountsEveryStateInTheDigitsOfTheLocale) {
    const ProviderSnapshot snapshot =
        serviceWith({reportAt(moment, operational), reportAt(moment, degraded), reportAt(moment, outage),
            reportAt(moment, maintenance), reportAt(moment, unknown), reportAt(moment, unknown)});
    EXPECT_EQ(rowOf(snapshot).historyAccessibleLabel,
        "Last 6 reports: 1 operational, 1 degraded, 1 outage, 1 maintenance, 2 unknown");
    EXPECT_EQ(rowOf(snapshot, "ar_EG").historyAccessibleLabel,
        "Last ٦ reports: ١ operational, ١ degraded, ١ outage, ١ maintenance, ٢ unknown");
}

TEST(ServiceRow, aBlockHasMomentStateSummaryAndDurationOnALineEach) {
    ProviderCheckRecord record = reportAt(moment, outage);
    record.summary = "Major outage";
    record.elapsedMS = 1200;
    EXPECT_EQ(withPlainBlanks(rowOf(serviceWith({record})).history[0].details),
        "Jan 31, 2026, 9:05 AM\nOutage\nMajor outage\n1.2s");
    EXPECT_EQ(withPlainBlanks(rowOf(serviceWith({reportAt(moment, outage)}), "ja_JP").history[0].details),
        "2026年1月31日 9:05\nOutage");
}

TEST(ServiceRow, aSourceThatIsNoPublicDestinationAnyMoreIsNamedFirst) {
    const char* expected = "This status source is no longer an eligible public HTTPS destination.";
    EXPECT_EQ(rowOf(serviceWith({failureOf(unsafeDestination)})).failure, expected);
    EXPECT_EQ(rowOf(added({failureOf(malformed), failureOf(unsafeDestination)})).failure, expected);
}

TEST(ServiceRow, anAddedServiceWithTwoOddRepliesInARowHasChangedItsFormat) {
    for (const auto category : {unsupportedFormat, changedSchema, malformed})
        EXPECT_EQ(rowOf(added({failureOf(category), failureOf(malformed)})).failure, formatChanged);
}

TEST(ServiceRow, oneOddReplyDoesNotAskToAddTheSourceAgain) {
    EXPECT_EQ(rowOf(added({failureOf(malformed)})).failure, notRefreshed);
    EXPECT_EQ(rowOf(added({reportAt(moment, operational), failureOf(malformed)})).failure, notRefreshed);
    EXPECT_EQ(rowOf(added({failureOf(unreachable), failureOf(malformed)})).failure, notRefreshed);
    EXPECT_EQ(rowOf(added({failureOf(malformed), failureOf(unavailable)})).failure, notRefreshed);
}

TEST(ServiceRow, anIncludedServiceIsNeverToBeAddedAgain) {
    EXPECT_EQ(rowOf(serviceWith({failureOf(malformed), failureOf(malformed)})).failure, notRefreshed);
}

TEST(ServiceRow, anUnknownStateWithoutCategoryCouldNotBeRefreshed) {
    EXPECT_EQ(rowOf(serviceWith({failureOf(std::nullopt)})).failure, notRefreshed);
}

TEST(ServiceRow, aServiceWithAStateHasNoFailureLine) {
    EXPECT_FALSE(rowOf(added({failureOf(malformed), reportAt(moment, outage)})).failure);
}

TEST(ServiceRow, linksToThePageForPeople) {
    ProviderSnapshot snapshot = serviceWith({});
    snapshot.provider.publicStatusURL.text = "https://status.openai.com/";
    EXPECT_EQ(rowOf(snapshot).linkURL, "https://status.openai.com/");
    EXPECT_EQ(rowOf(snapshot).linkSymbol, "arrow.up.right.square");
    EXPECT_EQ(rowOf(snapshot).linkText, "Official status");
    EXPECT_EQ(rowOf(added({})).linkText, "Added status service");
}

TEST(ServiceRow, showsAllLettersOfASummaryInAnyScriptAndShortensAHugeOne) {
    ProviderCheckRecord record = reportAt(moment, operational);
    for (int letter = 0; letter < 160; ++letter)
        record.summary += "障";
    EXPECT_EQ(rowOf(serviceWith({record})).summary, record.summary);
    record.summary = std::string(8'000'000, 'x');
    EXPECT_LT(rowOf(serviceWith({record})).summary.size(), 2'100U);
    EXPECT_LT(rowOf(serviceWith({record})).history[0].details.size(), 2'200U);
}

} // namespace
} // namespace kestrin
