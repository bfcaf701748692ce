#include "probing/ProbingLab.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

struct ProxiedLab : ProbingLab {
    ProxiedLab() {
        names->answer("a.example", {"192.88.99.1"});
        internet.proxyHost = "proxy.example";
    }
};

TEST(AFetchThroughAProxy, findsTheProxyBesideTheJudgedDestination) {
    ProxiedLab lab;
    lab.names->answer("proxy.example", {"10.0.0.3"});
    lab.internet.answer("a.example", 200);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 200");
    ASSERT_EQ(lab.internet.sent().size(), 1U);
    EXPECT_THAT(lab.internet.sent()[0].addresses, ElementsAre("192.88.99.1"));
    EXPECT_THAT(lab.internet.sent()[0].proxyAddresses, ElementsAre("10.0.0.3"));
}

TEST(AFetchThroughAProxy, stillRefusesAPrivateDestination) {
    ProxiedLab lab;
    lab.names->answer("proxy.example", {"10.0.0.3"});
    lab.names->answer("inside.example", {"10.0.0.4"});
    EXPECT_NE(lab.outcomeOfWebsite("https://inside.example/"), "status 200");
    EXPECT_THAT(lab.names->asked(), ElementsAre("inside.example"));
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(AFetchThroughAProxy, whoseNameDoesNotExistFails) {
    ProxiedLab lab;
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "The request failed.");
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(AFetchThroughAProxy, whoseResolutionHangsEndsWithTheResourceLimit) {
    ProxiedLab lab;
    lab.names->answer("proxy.example", {"10.0.0.3"});
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    lab.clock.advance(17s);
    lab.runExecutors();
    EXPECT_EQ(ProbingLab::outcome(fetch), "The request timed out.");
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    lab.settle();
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(AFetchThroughAProxy, whoseResolutionHangsEndsWhenItIsCancelled) {
    ProxiedLab lab;
    lab.names->answer("proxy.example", {"10.0.0.3"});
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    EXPECT_FALSE(fetch.done());
    fetch.cancel();
    lab.runExecutors();
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
    lab.settle();
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(AFetchThroughAProxy, findsItAnewForEveryHop) {
    ProxiedLab lab;
    lab.names->answer("proxy.example", {"10.0.0.3"});
    lab.names->answer("proxy.example", {"10.0.0.5"});
    lab.internet.redirect("a.example", {"/next"});
    lab.internet.answer("a.example", 200);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 200");
    ASSERT_EQ(lab.internet.sent().size(), 2U);
    EXPECT_THAT(lab.internet.sent()[1].proxyAddresses, ElementsAre("10.0.0.5"));
}

} // namespace
} // namespace kestrin
