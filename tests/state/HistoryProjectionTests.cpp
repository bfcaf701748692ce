#include "state/ProviderHistoryProjection.h"
#include "state/SiteHistoryProjection.h"
#include "text/Timestamp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The text of the n-th minute.
std::string minute(int n) {
    return timestampText(std::chrono::sys_days(std::chrono::January / 1 / 2026) + std::chrono::minutes(n));
}

CheckRecord record(std::string timestamp, bool up) {
    CheckRecord record;
    record.timestamp = std::move(timestamp);
    record.siteID = "a";
    record.dnsOK = up;
    record.up = up;
    return record;
}

/// One record a minute, "u" for up and "d" for down.
SiteHistoryProjection folded(std::string_view checks) {
    SiteHistoryProjection projection;
    for (std::size_t i = 0; i < checks.size(); ++i)
        projection.append(record(minute(static_cast<int>(i)), checks[i] == 'u'));
    return projection;
}

Incident closed(int from, int to) {
    return {.started = parseTimestamp(minute(from)),
        .ended = parseTimestamp(minute(to)),
        .startedText = minute(from),
        .endedText = minute(to)};
}

Incident ongoing(int from) {
    return {.started = parseTimestamp(minute(from)),
        .ended = std::nullopt,
        .startedText = minute(from),
        .endedText = std::nullopt};
}

} // namespace

TEST(FoldingChecks, beginsEmpty) {
    const SiteHistoryProjection projection;
    EXPECT_EQ(projection.totalCheckCount, 0);
    EXPECT_EQ(projection.successfulCheckCount, 0);
    EXPECT_THAT(projection.recentChecks, IsEmpty());
    EXPECT_THAT(projection.incidents(), IsEmpty());
    EXPECT_FALSE(projection.ongoingIncidentStart);
}

TEST(FoldingChecks, closesOneIncidentFromTheFirstFailureToTheRecovery) {
    const SiteHistoryProjection projection = folded("ddu");
    EXPECT_THAT(projection.recentClosedIncidents, ElementsAre(closed(0, 2)));
    EXPECT_EQ(projection.totalCheckCount, 3);
    EXPECT_EQ(projection.successfulCheckCount, 1);
    EXPECT_FALSE(projection.ongoingIncidentStart);
}

TEST(FoldingChecks, keepsTheFirstFailureOfAnOngoingIncidentHoweverLongAgo) {
    const SiteHistoryProjection projection = folded("uu" + std::string(100, 'd'));
    ASSERT_TRUE(projection.ongoingIncidentStart);
    EXPECT_EQ(projection.ongoingIncidentStart->timestamp, minute(2));
    EXPECT_THAT(projection.incidents(), ElementsAre(ongoing(2)));
}

TEST(FoldingChecks, createsNothingFromAFirstCheckThatIsUp) {
    const SiteHistoryProjection projection = folded("u");
    EXPECT_THAT(projection.incidents(), IsEmpty());
    EXPECT_FALSE(projection.ongoingIncidentStart);
}

TEST(FoldingChecks, keepsThreeOfFourClosedIncidentsNewestFirst) {
    EXPECT_THAT(folded("dududdu"
                       "du")
                    .recentClosedIncidents,
        ElementsAre(closed(7, 8), closed(4, 6), closed(2, 3)));
}

TEST(FoldingChecks, showsAnOngoingIncidentAndTheTwoNewestClosedOnes) {
    const SiteHistoryProjection projection = folded("dudududd");
    EXPECT_THAT(projection.incidents(), ElementsAre(ongoing(6), closed(4, 5), closed(2, 3)));
    EXPECT_THAT(projection.recentClosedIncidents, ElementsAre(closed(4, 5), closed(2, 3), closed(0, 1)))
        << "which are all kept";
}

TEST(FoldingChecks, keepsTheLast30Of31) {
    const SiteHistoryProjection projection = folded(std::string(31, 'u'));
    ASSERT_EQ(projection.recentChecks.size(), 30u);
    EXPECT_EQ(projection.recentChecks.front(), record(minute(1), true));
    EXPECT_EQ(projection.recentChecks.back(), record(minute(30), true));
    EXPECT_EQ(projection.totalCheckCount, 31);
}

TEST(FoldingChecks, keepsRecordsWholeWhenItReusesTheirMemory) {
    SiteHistoryProjection projection;
    for (int i = 0; i < 100; ++i) {
        CheckRecord check = record(minute(i), true);
        if (i % 2 == 0) check.error = std::string(static_cast<std::size_t>(i), 'e');
        if (i % 3 == 0) check.ips.assign(static_cast<std::size_t>(i % 5), "192.0.2.1");
        if (i % 7 == 0) check.elapsedMS = i;
        projection.append(check);
        EXPECT_EQ(projection.recentChecks.back(), check);
    }
    EXPECT_EQ(projection.recentChecks.front().timestamp, minute(70));
}

TEST(FoldingChecks, leavesADateEmptyForATimestampThatDoesNotParse) {
    SiteHistoryProjection projection;
    projection.append(record("yesterday", false));
    EXPECT_THAT(projection.incidents(), ElementsAre(Incident{.started = std::nullopt,
                                            .ended = std::nullopt,
                                            .startedText = "yesterday",
                                            .endedText = std::nullopt}));
    projection.append(record("2026-01-31T09:05:00.5Z", true));
    EXPECT_THAT(projection.incidents(), ElementsAre(Incident{.started = std::nullopt,
                                            .ended = std::nullopt,
                                            .startedText = "yesterday",
                                            .endedText = "2026-01-31T09:05:00.5Z"}));
}

TEST(FoldingChecks, takesRecordsOutOfTimeOrderAsTheyStand) {
    SiteHistoryProjection projection;
    for (const int n : {9, 3, 7})
        projection.append(record(minute(n), n == 7));
    EXPECT_THAT(projection.incidents(), ElementsAre(closed(9, 7)));
    EXPECT_EQ(projection.recentChecks.front().timestamp, minute(9));
}

TEST(AnIncident, isIdentifiedByItsTexts) {
    EXPECT_EQ(closed(0, 1).identity(), minute(0) + "-" + minute(1));
    EXPECT_EQ(ongoing(0).identity(), minute(0) + "-ongoing");
}

TEST(FoldingServiceChecks, keepsTheLast24) {
    ProviderHistoryProjection projection;
    for (int i = 0; i < 25; ++i) {
        ProviderCheckRecord record;
        record.timestamp = minute(i);
        record.summary = minute(i);
        projection.append(record);
    }
    ASSERT_EQ(projection.recentChecks.size(), 24u);
    EXPECT_EQ(projection.recentChecks.front().timestamp, minute(1));
    EXPECT_EQ(projection.recentChecks.back().summary, minute(24));
}
