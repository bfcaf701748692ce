#include "probing/ProbingLab.h"
#include "probing/WebsiteChecker.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Website checks among names that hang.
struct HangingCheckLab : ProbingLab {
    WebsiteChecker checker{client, resolver, clock, [] { return std::chrono::sys_seconds(); }};

    HangingCheckLab() { names->answer("a.example", {"192.88.99.1"}); }

    TaskHandle<CheckRecord> startCheck() {
        return start(checker.checkWebsite(SiteDefinition{"site-1", "Site", "https://a.example/", true}, 15s));
    }
    void pass(std::chrono::nanoseconds duration) {
        clock.advance(duration);
        runExecutors();
    }
    static CheckRecord record(
        bool dnsOK, std::vector<std::string> ips, const std::string& error, std::int64_t elapsedMS) {
        return {"1970-01-01T00:00:00Z", "site-1", "https://a.example/", dnsOK, std::move(ips), std::nullopt,
            elapsedMS, false, error};
    }
};

TEST(CheckingAWebsiteWhoseNameHangs, endsAfterThirtySecondsAndSaysSo) {
    HangingCheckLab lab;
    const auto check = lab.startCheck();
    lab.pass(30s);
    ASSERT_TRUE(check.done());
    EXPECT_EQ(check.take(), HangingCheckLab::record(false, {}, "DNS: The lookup did not return", 30'000));
    EXPECT_THAT(lab.contacted(), IsEmpty());
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
}

TEST(CheckingAWebsiteWhoseNameHangs, endsAtOnceTheNextTimeUntilTheLookupHasReturned) {
    HangingCheckLab lab;
    lab.startCheck();
    lab.pass(30s);
    const auto again = lab.startCheck();
    ASSERT_TRUE(again.done());
    EXPECT_EQ(again.take(), HangingCheckLab::record(false, {}, "DNS: The lookup did not return", 0));
    EXPECT_THAT(lab.names->asked(), IsEmpty());

    lab.finishLookup();
    lab.internet.answer("a.example", 200);
    const auto afterwards = lab.startCheck();
    lab.settle();
    EXPECT_TRUE(afterwards.take().up);
}

TEST(CheckingAWebsiteWhoseNameHangs, endsAfterThirtySecondsAlsoWhenCancelled) {
    HangingCheckLab lab;
    const auto check = lab.startCheck();
    check.cancel();
    lab.pass(30s - 1ns);
    EXPECT_FALSE(check.done());
    lab.pass(1ns);
    ASSERT_TRUE(check.done());
    EXPECT_FALSE(check.take().dnsOK);
}

// As after any other second lookup that fails.
TEST(CheckingAWebsiteWhoseNameHangs, atTheSecondLookupIsRefusedAfterThirtySecondsMore) {
    HangingCheckLab lab;
    const auto check = lab.startCheck();
    lab.pass(1s);
    lab.finishLookup();
    lab.pass(30s);
    ASSERT_TRUE(check.done());
    EXPECT_EQ(check.take(), HangingCheckLab::record(true, {"192.88.99.1"},
                                "Private or reserved network destination blocked: a.example", 31'000));
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
}

TEST(CheckingAWebsiteWhoseNameHangs, letsTheNextRequestHaveItsTurn) {
    HangingCheckLab lab;
    lab.names->answer("b.example", {"192.88.99.1"});
    lab.internet.answer("b.example", 200);
    const auto hanging = lab.startWebsite("https://a.example/");
    const auto waiting = lab.startWebsite("https://b.example/");
    ASSERT_EQ(lab.lookups.waiting(), 1U) << "requests are judged one at a time";
    lab.pass(30s);
    EXPECT_EQ(ProbingLab::outcome(hanging), "Private or reserved network destination blocked: a.example");
    lab.finishLookup(1);
    lab.finishTransfer();
    EXPECT_EQ(ProbingLab::outcome(waiting), "status 200");
}

TEST(CheckingAWebsiteWhoseRedirectHangs, timesOutEveryTimeAndIsNotAskedAgainBeforeItReturns) {
    HangingCheckLab lab;
    const auto startRedirected = [&lab] {
        lab.internet.redirect("a.example", {"https://www.a.example/"});
        const auto fetch = lab.startWebsite("https://a.example/");
        lab.finishLookup(lab.lookups.waiting() - 1);
        lab.finishTransfer();
        return fetch;
    };
    const auto first = startRedirected();
    lab.pass(17s);
    EXPECT_EQ(ProbingLab::outcome(first), "The request timed out.");
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    lab.pass(5min);
    const auto next = startRedirected();
    EXPECT_EQ(ProbingLab::outcome(next), "The request timed out.");
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    EXPECT_THAT(lab.names->asked(), ElementsAre("a.example", "a.example"));
}

} // namespace
} // namespace kestrin
