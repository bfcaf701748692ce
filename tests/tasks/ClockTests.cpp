#include "tasks/Clock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace kestrin {
namespace {

constexpr std::int64_t hugeInterval = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t hugeStepBack = std::numeric_limits<std::int64_t>::min();
constexpr Instant oneHour{std::chrono::hours(1)};

TEST(ADeadline, liesTheGivenNumberOfSecondsAfterItsStart) {
    EXPECT_EQ(saturatingAfter(oneHour, 300), oneHour + std::chrono::seconds(300));
}

TEST(ADeadline, ofNoSecondsIsItsStart) {
    EXPECT_EQ(saturatingAfter(oneHour, 0), oneHour);
}

TEST(ADeadline, mayLieBeforeItsStart) {
    EXPECT_EQ(saturatingAfter(oneHour, -60), oneHour - std::chrono::minutes(1));
}

TEST(ADeadline, ofAHugeIntervalIsTheEndOfTimeAndNotThePast) {
    EXPECT_EQ(saturatingAfter(oneHour, hugeInterval), Instant::max());
}

TEST(ADeadline, whoseSumAloneOverflowsIsTheEndOfTime) {
    constexpr std::int64_t mostSecondsOfNanoseconds = hugeInterval / 1'000'000'000;
    EXPECT_EQ(saturatingAfter(oneHour, mostSecondsOfNanoseconds), Instant::max());
    EXPECT_LT(saturatingAfter(Instant(), mostSecondsOfNanoseconds), Instant::max());
}

TEST(ADeadline, farBeforeItsStartIsTheBeginningOfTime) {
    EXPECT_EQ(saturatingAfter(oneHour, hugeStepBack), Instant::min());
    EXPECT_EQ(saturatingAfter(Instant::min(), -1), Instant::min());
}

TEST(ADeadline, staysAtTheEndOfTimeWhenItStartsThere) {
    EXPECT_EQ(saturatingAfter(Instant::max(), 1), Instant::max());
}

} // namespace
} // namespace kestrin
