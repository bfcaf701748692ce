#include "text/LocaleFormats.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <optional>

namespace kestrin {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::sys_seconds morning = std::chrono::sys_days(std::chrono::January / 31 / 2026) + 9h + 5min;

LocaleFormats formatsOf(const std::string& locale, const std::string& timeZone = "UTC") {
    return {locale, locale, timeZone};
}

TEST(FormattingDurations, belowASecondIsWholeMilliseconds) {
    EXPECT_EQ(formatsOf("en_US.UTF-8").duration(0), "0ms");
    EXPECT_EQ(formatsOf("en_US.UTF-8").duration(999), "999ms");
}

TEST(FormattingDurations, fromASecondIsSecondsWithOneDigit) {
    EXPECT_EQ(formatsOf("en_US.UTF-8").duration(1000), "1.0s");
    EXPECT_EQ(formatsOf("en_US.UTF-8").duration(15049), "15.0s");
}

TEST(FormattingDurations, followsTheLocaleOfNumbers) {
    EXPECT_EQ(LocaleFormats("en_US", "de_DE.UTF-8", "UTC").duration(1234), "1,2 Sek.");
    EXPECT_EQ(LocaleFormats("de_DE", "en_US.UTF-8", "UTC").duration(1234), "1.2s");
}

TEST(FormattingDurations, survivesAnyStoredNumber) {
    EXPECT_FALSE(formatsOf("en_US").duration(std::numeric_limits<std::int64_t>::max()).empty());
    EXPECT_FALSE(formatsOf("en_US").duration(std::numeric_limits<std::int64_t>::min()).empty());
}

TEST(FormattingTimes, followsTheLocaleOfTimes) {
    EXPECT_EQ(LocaleFormats("de_DE.UTF-8", "en_US", "UTC").time(morning), "09:05");
    const std::string american = LocaleFormats("en_US.UTF-8", "de_DE", "UTC").time(morning);
    EXPECT_TRUE(american.starts_with("9:05")) << american;
    EXPECT_TRUE(american.ends_with("AM")) << american;
}

TEST(FormattingTimes, followsTheTimeZone) {
    EXPECT_EQ(formatsOf("de_DE.UTF-8", "Europe/Berlin").time(morning), "10:05");
}

TEST(FormattingTimes, anEncodingDoesNotHideTheRegion) {
    EXPECT_EQ(formatsOf("en_GB.UTF-8").dateAndTime(morning), "31 Jan 2026, 09:05");
}

TEST(FormattingTimes, aTimeLocaleMayNameItsHourCycle) {
    EXPECT_EQ(formatsOf("en_US@hours=h23").time(morning), "09:05");
    EXPECT_TRUE(formatsOf("de_DE@hours=h12").time(morning).starts_with("9:05"));
}

TEST(FormattingTimes, aChangedTimeZoneOfTheMachineShowsInTheNextText) {
    const char* const earlier = std::getenv("TZ");
    const std::optional<std::string> kept = earlier ? std::optional<std::string>(earlier) : std::nullopt;
    const LocaleFormats formats("de_DE", "de_DE");
    ::setenv("TZ", "Europe/Berlin", 1);
    EXPECT_EQ(formats.time(morning), "10:05");
    const LocaleFormats drawing = formats.withPresentTimeZone();
    ::setenv("TZ", "Asia/Tokyo", 1);
    EXPECT_EQ(formats.time(morning), "18:05");
    EXPECT_EQ(formats.dateAndTime(morning), "31. Jan. 2026, 18:05");
    EXPECT_EQ(drawing.time(morning), "10:05");
    if (kept)
        ::setenv("TZ", kept->c_str(), 1);
    else
        ::unsetenv("TZ");
}

TEST(FormattingTimes, dateAndTimeFollowTheLocaleOfTimes) {
    EXPECT_EQ(formatsOf("de_DE").dateAndTime(morning), "31. Jan. 2026, 09:05");
    EXPECT_EQ(formatsOf("ja_JP").dateAndTime(morning), "2026年1月31日 9:05");
    EXPECT_EQ(formatsOf("ar_EG").time(morning), "٩:٠٥ ص");
    EXPECT_TRUE(formatsOf("en_US").dateAndTime(morning).starts_with("Jan 31, 2026, 9:05"));
    EXPECT_EQ(LocaleFormats("de_DE", "en_US", "UTC").dateAndTime(morning), "31. Jan. 2026, 09:05");
}

TEST(FormattingTimes, followsDaylightSavingOfTheMoment) {
    const auto summer = std::chrono::sys_days(std::chrono::July / 31 / 2026) + 9h + 5min;
    EXPECT_EQ(formatsOf("de_DE", "Europe/Berlin").time(summer), "11:05");
}

TEST(FormattingTimes, manyMomentsKeepTheirOwnTexts) {
    const LocaleFormats formats = formatsOf("de_DE");
    for (int round = 0; round < 2; ++round)
        for (int minute = 0; minute < 2'000; ++minute) {
            const std::string text = formats.time(morning + std::chrono::minutes(minute));
            const int ofDay = (9 * 60 + 5 + minute) % (24 * 60);
            char expected[8];
            std::snprintf(expected, sizeof expected, "%02d:%02d", ofDay / 60, ofDay % 60);
            ASSERT_EQ(text, expected);
        }
}

TEST(FormattingNumbers, integersHaveTheGroupsAndDigitsOfTheLocale) {
    EXPECT_EQ(formatsOf("en_US").integer(0), "0");
    EXPECT_EQ(formatsOf("en_US").integer(1'234'567), "1,234,567");
    EXPECT_EQ(formatsOf("de_DE").integer(1'234'567), "1.234.567");
    EXPECT_EQ(formatsOf("ar_EG").integer(12), "١٢");
    EXPECT_EQ(formatsOf("ja_JP").integer(1'234), "1,234");
}

TEST(FormattingNumbers, percentagesHaveExactlyOneFractionDigit) {
    EXPECT_EQ(formatsOf("en_US").percentage(0), "0.0%");
    EXPECT_EQ(formatsOf("en_US").percentage(1), "100.0%");
    EXPECT_EQ(formatsOf("en_US").percentage(1.0 / 3), "33.3%");
    EXPECT_EQ(formatsOf("de_DE").percentage(1.0 / 3), "33,3\u00a0%");
    EXPECT_EQ(formatsOf("ja_JP").percentage(2.0 / 3), "66.7%");
    EXPECT_TRUE(formatsOf("ar_EG").percentage(1.0 / 3).starts_with("٣٣٫٣٪"));
}

TEST(FormattingNumbers, followTheLocaleOfNumbersAndNotOfTimes) {
    EXPECT_EQ(LocaleFormats("de_DE", "en_US", "UTC").integer(1'234), "1,234");
    EXPECT_EQ(LocaleFormats("de_DE", "en_US", "UTC").percentage(0.5), "50.0%");
}

TEST(FormattingTimes, doesWithoutALocaleItDoesNotKnow) {
    EXPECT_FALSE(formatsOf("xx_YY.UTF-8").time(morning).empty());
    EXPECT_FALSE(formatsOf("").duration(12).empty());
}

} // namespace
} // namespace kestrin
