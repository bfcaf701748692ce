#include "probing/ProbingLab.h"
#include "tasks/CancellationError.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CancellationLab : ProbingLab {
    CancellationLab() {
        names->answer("a.example", {"192.88.99.1"});
        names->answer("b.example", {"192.88.99.1"});
    }
};

TEST(CancellingAFetch, beforeItHasBegunContactsNobody) {
    CancellationLab lab;
    const auto fetch = spawn(lab.caller,
        lab.client.fetch(ProbingLab::request("https://a.example/"), websitePolicy(urlOf("https://a.example/"))));
    fetch.cancel();
    lab.settle();
    EXPECT_THROW(static_cast<void>(fetch.take()), CancellationError);
    EXPECT_THAT(lab.names->asked(), IsEmpty());
}

TEST(CancellingAFetch, thatWaitsForItsTurnEndsItAtOnce) {
    CancellationLab lab;
    lab.internet.answer("a.example", 200);
    const auto first = lab.startWebsite("https://a.example/");
    const auto second = lab.startWebsite("https://b.example/");
    second.cancel();
    lab.runExecutors();
    EXPECT_EQ(ProbingLab::outcome(second), "Cancelled");
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(first), "status 200");
    EXPECT_THAT(lab.names->asked(), ElementsAre("a.example"));
}

TEST(CancellingAFetch, whileItsHostIsResolvedWaitsForTheResolutionAndContactsNobody) {
    CancellationLab lab;
    const auto fetch = lab.startWebsite("https://a.example/");
    fetch.cancel();
    lab.runExecutors();
    EXPECT_FALSE(fetch.done());
    lab.finishLookup();
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
    EXPECT_EQ(lab.transfers.waiting(), 0U);
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(CancellingAFetch, beforeItsTransferHasAThreadContactsNobody) {
    CancellationLab lab;
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    ASSERT_EQ(lab.transfers.waiting(), 1U);
    fetch.cancel();
    lab.finishTransfer();
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(CancellingAFetch, duringATransferEndsIt) {
    CancellationLab lab;
    TaskHandle<FreshHTTPResponse> fetch;
    ScriptedTransport::Answer answer;
    answer.response.status = 200;
    answer.meanwhile = [&fetch] { fetch.cancel(); };
    lab.internet.answer("a.example", answer);
    fetch = lab.startWebsite("https://a.example/");
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
    EXPECT_THAT(lab.contacted(), ElementsAre("a.example:443/"));
}

TEST(CancellingAFetch, whileARedirectIsResolvedEndsAtOnceAndLeavesTheResolutionBehind) {
    CancellationLab lab;
    lab.internet.redirect("a.example", {"/next"});
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    lab.finishTransfer();
    ASSERT_EQ(lab.lookups.waiting(), 1U);
    fetch.cancel();
    lab.runExecutors();
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    EXPECT_EQ(lab.clock.timerCount(), 0U);
    lab.settle();
    EXPECT_EQ(lab.resolver.abandonedCount(), 0U);
}

TEST(CancellingAFetch, duringTheTransferOfARedirectEndsIt) {
    CancellationLab lab;
    TaskHandle<FreshHTTPResponse> fetch;
    lab.internet.redirect("a.example", {"/next"});
    ScriptedTransport::Answer answer;
    answer.response.status = 200;
    answer.meanwhile = [&fetch] { fetch.cancel(); };
    lab.internet.answer("a.example", answer);
    fetch = lab.startWebsite("https://a.example/");
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
    EXPECT_THAT(lab.contacted(), ElementsAre("a.example:443/", "a.example:443/next"));
}

TEST(CancellingAFetch, afterTheRedirectArrivedNeitherResolvesNorContactsItsTarget) {
    CancellationLab lab;
    lab.internet.redirect("a.example", {"/next"});
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    lab.transfers.finish();
    fetch.cancel();
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
    EXPECT_THAT(lab.names->asked(), ElementsAre("a.example"));
}

TEST(CancellingAFetch, afterItHasEndedChangesNothing) {
    CancellationLab lab;
    lab.internet.answer("a.example", 200);
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.settle();
    fetch.cancel();
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(fetch), "status 200");
}

TEST(ShuttingDown, leavesAStuckResolutionBehindAndEndsAllWhoWaitForTheirTurn) {
    CancellationLab lab;
    const auto stuck = lab.startWebsite("https://a.example/");
    const auto waiting = lab.startWebsite("https://b.example/");
    stuck.cancel();
    waiting.cancel();
    lab.runExecutors();
    EXPECT_FALSE(stuck.done());
    lab.shutdown.request_stop();
    lab.runExecutors();
    EXPECT_EQ(ProbingLab::outcome(stuck), "Cancelled");
    EXPECT_EQ(ProbingLab::outcome(waiting), "Cancelled");
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
}

TEST(ShuttingDown, startsNoFurtherResolution) {
    CancellationLab lab;
    lab.shutdown.request_stop();
    const auto fetch = lab.startWebsite("https://a.example/");
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
    EXPECT_EQ(lab.lookups.waiting(), 0U);
}

TEST(ShuttingDown, endsTheResolutionOfARedirect) {
    CancellationLab lab;
    lab.internet.redirect("a.example", {"/next"});
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    lab.finishTransfer();
    lab.shutdown.request_stop();
    lab.runExecutors();
    EXPECT_EQ(ProbingLab::outcome(fetch), "Cancelled");
}

} // namespace
} // namespace kestrin
