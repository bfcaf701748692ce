#include "text/LocaleFormats.h"

#include <gtest/gtest.h>
#include <limits>

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

TEST(FormattingTimes, doesWithoutALocaleItDoesNotKnow) {
    EXPECT_FALSE(formatsOf("xx_YY.UTF-8").time(morning).empty());
    EXPECT_FALSE(formatsOf("").duration(12).empty());
}

} // namespace
} // namespace kestrin
