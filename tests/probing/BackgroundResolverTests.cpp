#include "probing/BackgroundResolver.h"

#include "model/MessageError.h"
#include "probing/ProbingLab.h"
#include "tasks/CancellationError.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

const DNSResolution invalidHost{false, {}, "Invalid host"};
const DNSResolution didNotReturn{false, {}, "DNS: The lookup did not return"};
const DNSResolution known{true, {"192.88.99.1"}, std::nullopt};

TEST(ResolvingInTheBackground, givesWhatTheResolverGave) {
    ProbingLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    const auto lookup = lab.start(lab.resolver.resolveHostInBackground("a.example"));
    EXPECT_FALSE(lookup.done());
    lab.settle();
    EXPECT_EQ(lookup.take(), known);
}

TEST(ResolvingInTheBackground, anAbsentOrEmptyHostIsInvalidAndAsksNobody) {
    ProbingLab lab;
    const auto absent = lab.start(lab.resolver.resolveHostInBackground(std::nullopt));
    const auto empty = lab.start(lab.resolver.resolveHostInBackground(""));
    EXPECT_EQ(absent.take(), invalidHost);
    EXPECT_EQ(empty.take(), invalidHost);
    EXPECT_THAT(lab.names->asked(), IsEmpty());
}

TEST(ResolvingInTheBackground, whatTheResolverThrowsComesThrough) {
    ProbingLab lab;
    lab.names->answer("a.example", []() -> DNSResolution { throw std::runtime_error("broken"); });
    const auto lookup = lab.start(lab.resolver.resolveHostInBackground("a.example"));
    const auto limited = lab.start(lab.resolver.resolveHostUntil("a.example", lab.clock.now() + 1s));
    lab.settle();
    EXPECT_THROW(static_cast<void>(lookup.take()), std::runtime_error);
    EXPECT_THROW(static_cast<void>(limited.take()), std::runtime_error);
    EXPECT_EQ(lab.clock.timerCount(), 0U);
}

TEST(ResolvingInTheBackground, aPassedDeadlineAsksNobody) {
    ProbingLab lab;
    const auto lookup = lab.start(lab.resolver.resolveHostUntil("a.example", lab.clock.now()));
    EXPECT_EQ(lookup.take(), std::nullopt);
    EXPECT_EQ(lab.lookups.waiting(), 0U);
}

TEST(ResolvingInTheBackground, stuckResolutionsAreCountedAndAtTheCapFurtherOnesFail) {
    ProbingLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    for (int count = 0; count < 2; ++count)
        lab.start(lab.resolver.resolveHostUntil("a.example", lab.clock.now() + 1s));
    const auto patient = lab.start(lab.resolver.resolveHostInBackground("a.example"));
    lab.clock.advance(1s);
    lab.runExecutors();
    EXPECT_EQ(lab.resolver.abandonedCount(), 2U);

    const auto refused = lab.start(lab.resolver.resolveHostInBackground("a.example"));
    EXPECT_EQ(refused.take(), didNotReturn);
    const auto alsoRefused = lab.start(lab.resolver.resolveHostUntil("a.example", lab.clock.now() + 1s));
    EXPECT_EQ(alsoRefused.take(), didNotReturn);

    lab.finishLookup(0);
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    const auto accepted = lab.start(lab.resolver.resolveHostInBackground("a.example"));
    lab.settle();
    EXPECT_EQ(accepted.take(), known);
    EXPECT_EQ(patient.take(), known);
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(ResolvingInTheBackground, oneThatWasLeftBehindBeforeItHadAThreadAsksNobody) {
    ProbingLab lab;
    lab.start(lab.resolver.resolveHostUntil("a.example", lab.clock.now() + 1s));
    lab.clock.advance(1s);
    lab.settle();
    EXPECT_THAT(lab.names->asked(), IsEmpty());
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(ResolvingInTheBackground, oneThatThePoolDropsIsNoLongerCounted) {
    ProbingLab lab;
    lab.start(lab.resolver.resolveHostUntil("a.example", lab.clock.now() + 1s));
    lab.clock.advance(1s);
    lab.runExecutors();
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    lab.lookups.dropAll();
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(ResolvingInTheBackground, aLateResultIsDroppedAndMayComeAfterAllElseHasGone) {
    ManualPool lookups;
    auto names = std::make_shared<ScriptedResolver>();
    std::weak_ptr<ScriptedResolver> alive = names;
    {
        VirtualClock clock;
        ManualExecutor caller;
        std::stop_source shutdown;
        const BackgroundResolver resolver(lookups, names, clock, shutdown.get_token());
        const auto lookup = spawn(caller, resolver.resolveHostInBackground("a.example"));
        // The shutdown comes while the resolution is under way, so that it has to return on its own.
        names->answer("a.example", [&shutdown, &caller, &lookup] {
            shutdown.request_stop();
            caller.runUntilIdle();
            EXPECT_THROW(static_cast<void>(lookup.take()), CancellationError);
            return known;
        });
        caller.runUntilIdle();
        lookups.finish();
        EXPECT_EQ(resolver.abandonedCount(), 0U);

        std::stop_source secondShutdown;
        const BackgroundResolver second(lookups, names, clock, secondShutdown.get_token());
        const auto stuck = spawn(caller, second.resolveHostInBackground("a.example"));
        caller.runUntilIdle();
        secondShutdown.request_stop();
        caller.runUntilIdle();
        EXPECT_TRUE(stuck.done());
        names.reset();
    }
    EXPECT_FALSE(alive.expired());
    lookups.finish();
    EXPECT_TRUE(alive.expired());
}

} // namespace
} // namespace kestrin
