#include "text/Timestamp.h"

#include <gtest/gtest.h>

using namespace kestrin;
using namespace std::chrono_literals;

namespace {

std::chrono::sys_seconds moment(int year, unsigned month, unsigned day, std::chrono::seconds time) {
    return std::chrono::sys_days(std::chrono::year_month_day(
               std::chrono::year{year}, std::chrono::month{month}, std::chrono::day{day})) +
           time;
}

} // namespace

TEST(TimestampText, isISO8601InUTCAtSecondPrecision) {
    EXPECT_EQ(timestampText(moment(2026, 1, 31, 9h + 5min)), "2026-01-31T09:05:00Z");
    EXPECT_EQ(timestampText(moment(1999, 12, 31, 23h + 59min + 59s)), "1999-12-31T23:59:59Z");
    EXPECT_EQ(timestampText(moment(1969, 12, 31, 23h + 59min + 59s)), "1969-12-31T23:59:59Z");
}

TEST(ParsingATimestamp, readsWhatWasWritten) {
    for (const auto time : {moment(2026, 1, 31, 9h + 5min), moment(1970, 1, 1, 0s), moment(1900, 3, 1, 1s),
             moment(9999, 12, 31, 86399s), moment(0, 1, 1, 0s)})
        EXPECT_EQ(parseTimestamp(timestampText(time)), time) << timestampText(time);
}

TEST(ParsingATimestamp, subtractsAnOffsetWithoutColon) {
    EXPECT_EQ(parseTimestamp("2026-01-31T09:05:00+0130"), moment(2026, 1, 31, 7h + 35min));
    EXPECT_EQ(parseTimestamp("2026-01-31T23:05:00-0100"), moment(2026, 2, 1, 5min));
    EXPECT_EQ(parseTimestamp("2026-01-31T09:05:00+0000"), moment(2026, 1, 31, 9h + 5min));
    EXPECT_EQ(parseTimestamp("2026-01-31T09:05:00-2359"), moment(2026, 2, 1, 9h + 4min));
}

TEST(ParsingATimestamp, acceptsOnlyDaysOfTheCalendar) {
    EXPECT_TRUE(parseTimestamp("2024-02-29T00:00:00Z"));
    EXPECT_TRUE(parseTimestamp("2000-02-29T00:00:00Z"));
    for (const char* text : {"2026-02-29T00:00:00Z", "1900-02-29T00:00:00Z", "2026-04-31T00:00:00Z",
             "2026-00-10T00:00:00Z", "2026-13-10T00:00:00Z", "2026-01-00T00:00:00Z", "2026-01-32T00:00:00Z"})
        EXPECT_FALSE(parseTimestamp(text)) << text;
}

TEST(ParsingATimestamp, acceptsOnlyTimesOfTheDay) {
    EXPECT_TRUE(parseTimestamp("2026-01-31T23:59:59Z"));
    for (const char* text : {"2026-01-31T24:00:00Z", "2026-01-31T23:60:00Z", "2026-01-31T23:59:60Z",
             "2026-01-31T00:00:00+2400", "2026-01-31T00:00:00+0060"})
        EXPECT_FALSE(parseTimestamp(text)) << text;
}

TEST(ParsingATimestamp, refusesAFractionAColonInTheOffsetAndAnythingElse) {
    for (const char* text : {"", "Z", "2026-01-31", "2026-01-31T09:05Z", "2026-01-31T09:05:00",
             "2026-01-31T09:05:00.0Z", "2026-01-31T09:05:00,5Z", "2026-01-31T09:05:00+01:30",
             "2026-01-31T09:05:00+01", "2026-01-31T09:05:00+013", "2026-01-31 09:05:00Z", "2026-01-31t09:05:00z",
             " 2026-01-31T09:05:00Z", "2026-01-31T09:05:00Z ", "2026-01-31T09:05:00ZZ", "2026-01-31T09:05:00Z0100",
             "20260131T090500Z", "2026-1-31T09:05:00Z", "+2026-01-31T09:05:00Z", "-026-01-31T09:05:00Z",
             "2026-01-31T-9:05:00Z", "2026-01-31T09:05:00 0100", "12026-01-31T09:05:00Z", "yesterday"})
        EXPECT_FALSE(parseTimestamp(text)) << text;
}

TEST(ParsingATimestamp, doesNotReadPastTheTextGiven) {
    const std::string_view longer = "2026-01-31T09:05:00+0130";
    for (std::size_t length = 0; length < longer.size(); ++length)
        EXPECT_FALSE(parseTimestamp(longer.substr(0, length))) << length;
}
