#include "model/MessageError.h"
#include "probing/ProbingLab.h"
#include "tasks/CancellationError.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;

const DNSResolution didNotReturn{false, {}, "DNS: The lookup did not return"};
const DNSResolution known{true, {"192.88.99.1"}, std::nullopt};

/// A resolver with as many places as in the running program.
struct HangLab : ProbingLab {
    BackgroundResolver resolver{lookups, names, clock, shutdown.get_token()};

    TaskHandle<DNSResolution> look(const std::string& host) {
        return start(resolver.resolveHostInBackground(host));
    }
    TaskHandle<std::optional<DNSResolution>> look(const std::string& host, std::chrono::nanoseconds patience) {
        return start(resolver.resolveHostUntil(host, clock.now() + patience));
    }
    void pass(std::chrono::nanoseconds duration) {
        clock.advance(duration);
        runExecutors();
    }
    /// Leaves so many lookups behind, of one host each: "0.example", "1.example" and so on.
    void leaveBehind(std::size_t count) {
        for (std::size_t number = 0; number < count; ++number)
            look(std::to_string(number) + ".example");
        pass(30s);
    }
};

TEST(AHangingLookup, isGivenUpAfterThirtySeconds) {
    HangLab lab;
    const auto lookup = lab.look("a.example");
    lab.pass(30s - 1ns);
    EXPECT_FALSE(lookup.done());
    lab.pass(1ns);
    ASSERT_TRUE(lookup.done());
    EXPECT_EQ(lookup.take(), didNotReturn);
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    EXPECT_EQ(lab.clock.timerCount(), 0U);
}

TEST(AHangingLookup, thatReturnsJustInTimeIsGivenAndNotCounted) {
    HangLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    const auto lookup = lab.look("a.example");
    lab.pass(30s - 1ns);
    lab.finishLookup();
    EXPECT_EQ(lookup.take(), known);
    EXPECT_EQ(lab.clock.timerCount(), 0U) << "its limit is still set";
    lab.pass(1min);
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(AHangingLookup, thatReturnsBetweenTheLimitAndTheEndOfTheWaitIsNotCounted) {
    HangLab lab;
    const auto lookup = lab.look("a.example");
    lab.clock.advance(30s);
    lab.lookups.finish();
    lab.runExecutors();
    EXPECT_EQ(lookup.take(), didNotReturn);
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(AHangingLookup, isNoLongerCountedWhenItReturnsAfterAll) {
    HangLab lab;
    const auto lookup = lab.look("a.example");
    lab.names->answer("a.example", [&lab] {
        lab.pass(30s);
        EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
        return known;
    });
    lab.finishLookup();
    EXPECT_EQ(lookup.take(), didNotReturn) << "a late answer is dropped";
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(AHangingLookup, ofACancelledTaskIsWaitedForNoLongerThanThat) {
    HangLab lab;
    const auto lookup = lab.look("a.example");
    lookup.cancel();
    lab.pass(30s - 1ns);
    EXPECT_FALSE(lookup.done());
    lab.pass(1ns);
    EXPECT_EQ(lookup.take(), didNotReturn);
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
}

TEST(AHangingLookup, isLeftAtOnceWhenTheProgramEnds) {
    HangLab lab;
    const auto lookup = lab.look("a.example");
    lab.pass(29s);
    lab.shutdown.request_stop();
    lab.runExecutors();
    EXPECT_THROW(static_cast<void>(lookup.take()), CancellationError);
    EXPECT_EQ(lab.clock.timerCount(), 0U);
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
}

TEST(AHangingLookup, isAlsoGivenUpAtALaterDeadline) {
    HangLab lab;
    const auto lookup = lab.look("a.example", 1h);
    lab.pass(30s);
    ASSERT_TRUE(lookup.done());
    EXPECT_EQ(lookup.take(), std::nullopt);
}

TEST(SixteenHangingLookups, makeTheNextOneFailAtOnceUntilOneReturns) {
    HangLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    lab.leaveBehind(15);
    const auto sixteenth = lab.look("a.example");
    lab.finishLookup(15);
    EXPECT_EQ(sixteenth.take(), known) << "fifteen are not too many";
    lab.look("15.example");
    lab.pass(30s);
    EXPECT_EQ(lab.resolver.abandonedCount(), 16U);

    const auto refused = lab.look("a.example");
    ASSERT_TRUE(refused.done());
    EXPECT_EQ(refused.take(), didNotReturn);
    const auto alsoRefused = lab.look("a.example", 10s);
    ASSERT_TRUE(alsoRefused.done());
    EXPECT_EQ(alsoRefused.take(), didNotReturn);
    EXPECT_EQ(lab.lookups.waiting(), 16U);

    lab.finishLookup();
    EXPECT_EQ(lab.resolver.abandonedCount(), 15U);
    const auto accepted = lab.look("a.example");
    lab.finishLookup(15);
    EXPECT_EQ(accepted.take(), known);
}

TEST(SixteenHangingLookups, countTheSameWhoeverLeftThemBehind) {
    HangLab lab;
    lab.look("limit.example");
    lab.look("deadline.example", 17s);
    const auto cancelled = lab.look("cancelled.example", 17s);
    cancelled.cancel();
    lab.pass(30s);
    EXPECT_EQ(lab.resolver.abandonedCount(), 3U);
    while (lab.lookups.waiting() > 0)
        lab.finishLookup();
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(ANameThatHangs, isNotAskedAgainBeforeItsLookupReturns) {
    HangLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    lab.look("a.example");
    lab.pass(30s);
    for (int cycle = 0; cycle < 100; ++cycle) {
        const auto again = lab.look("a.example");
        ASSERT_TRUE(again.done());
        ASSERT_EQ(again.take(), didNotReturn);
        lab.pass(5min);
    }
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    EXPECT_EQ(lab.lookups.waiting(), 1U);

    lab.finishLookup();
    const auto afterwards = lab.look("a.example");
    lab.settle();
    EXPECT_EQ(afterwards.take(), known);
}

TEST(ANameThatHangs, givesNothingAtOnceToWhoeverHasADeadline) {
    HangLab lab;
    lab.look("a.example", 17s);
    lab.pass(5min);
    const auto again = lab.look("a.example", 17s);
    ASSERT_TRUE(again.done()) << "it was asked again";
    EXPECT_EQ(again.take(), std::nullopt);
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
}

TEST(ANameThatHangs, doesNotDisturbOtherNames) {
    HangLab lab;
    lab.names->answer("b.example", {"192.88.99.1"});
    lab.look("a.example");
    lab.pass(30s);
    const auto other = lab.look("b.example");
    lab.finishLookup(1);
    EXPECT_EQ(other.take(), known);
}

// The task was given up by its user; nothing says yet that the name hangs.
TEST(ANameWhoseTaskWasCancelled, isAskedAgainUntilItsLookupHasRunForThirtySeconds) {
    HangLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    const auto cancelled = lab.look("a.example", 17s);
    cancelled.cancel();
    lab.pass(30s - 1ns);
    const auto again = lab.look("a.example");
    lab.finishLookup(1);
    EXPECT_EQ(again.take(), known);
    lab.pass(1ns);
    const auto refused = lab.look("a.example");
    ASSERT_TRUE(refused.done());
    EXPECT_EQ(refused.take(), didNotReturn);
}

} // namespace
} // namespace kestrin
