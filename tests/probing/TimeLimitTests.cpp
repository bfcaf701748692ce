#include "probing/ProbingLab.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

struct TimeLab : ProbingLab {
    TimeLab() { names->answer("a.example", {"192.88.99.1"}); }

    static ScriptedTransport::Answer after(
        std::vector<std::chrono::milliseconds> waits, std::int64_t status = 200) {
        ScriptedTransport::Answer answer;
        answer.response.status = status;
        if (status == 302) answer.response.locations = {"/next"};
        answer.waits = std::move(waits);
        return answer;
    }
};

TEST(LimitingTime, aServerThatIsSilentForTheTimeoutEndsTheRequest) {
    TimeLab lab;
    lab.internet.answer("a.example", TimeLab::after({15s}));
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "The request timed out.");
}

TEST(LimitingTime, aServerThatKeepsTricklingEndsTwoSecondsPastTheTimeout) {
    TimeLab lab;
    const Instant start = lab.clock.now();
    lab.internet.answer("a.example", TimeLab::after({14s, 14s}));
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "The request timed out.");
    EXPECT_EQ(lab.clock.now() - start, 17s);
}

TEST(LimitingTime, everyHopHasTheWholeTimeoutForSilencesButOnlyTheRestOfTheWhole) {
    TimeLab lab;
    lab.internet.answer("a.example", TimeLab::after({10s}, 302));
    lab.internet.answer("a.example", TimeLab::after({6s}));
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 200");
    ASSERT_EQ(lab.internet.sent().size(), 2U);
    EXPECT_EQ(lab.internet.sent()[0].totalTimeout, 17s);
    EXPECT_EQ(lab.internet.sent()[1].inactivityTimeout, 15s);
    EXPECT_EQ(lab.internet.sent()[1].totalTimeout, 7s);

    lab.internet.answer("a.example", TimeLab::after({10s}, 302));
    lab.internet.answer("a.example", TimeLab::after({7s}));
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "The request timed out.");
}

TEST(LimitingTime, theFirstResolutionIsNotCounted) {
    TimeLab lab;
    lab.internet.answer("a.example", 200);
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.clock.advance(29s);
    EXPECT_FALSE(fetch.done());
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(fetch), "status 200");
    EXPECT_EQ(lab.internet.sent().front().totalTimeout, 17s);
}

TEST(LimitingTime, theWaitForAThreadIsCounted) {
    TimeLab lab;
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    lab.clock.advance(17s);
    lab.finishTransfer();
    EXPECT_EQ(ProbingLab::outcome(fetch), "The request timed out.");
    EXPECT_THAT(lab.contacted(), testing::IsEmpty());
}

TEST(LimitingTime, aRestBelowAMillisecondIsNotHandedOnAsNone) {
    TimeLab lab;
    lab.internet.answer("a.example", 200);
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    lab.clock.advance(17s - 1ns);
    lab.finishTransfer();
    EXPECT_EQ(ProbingLab::outcome(fetch), "status 200");
    EXPECT_EQ(lab.internet.sent().front().totalTimeout, 1ms);
}

TEST(LimitingTime, theResolutionOfARedirectIsCountedAndLeftBehindAtTheLimit) {
    TimeLab lab;
    lab.internet.answer("a.example", TimeLab::after({5s}, 302));
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    lab.finishTransfer();
    lab.clock.advance(12s - 1ns);
    lab.runExecutors();
    EXPECT_FALSE(fetch.done());
    lab.clock.advance(1ns);
    lab.runExecutors();
    EXPECT_EQ(ProbingLab::outcome(fetch), "The request timed out.");
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
}

TEST(LimitingTime, aRedirectResolvedInTimeLeavesItsHopTheRest) {
    TimeLab lab;
    lab.internet.redirect("a.example", {"/next"});
    lab.internet.answer("a.example", 200);
    const auto fetch = lab.startWebsite("https://a.example/");
    lab.finishLookup();
    lab.finishTransfer();
    lab.clock.advance(16s);
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(fetch), "status 200");
    EXPECT_EQ(lab.internet.sent().back().totalTimeout, 1s);
    EXPECT_EQ(lab.clock.timerCount(), 0U);
}

TEST(LimitingTime, aTimeoutOfAnySizeGivesALimit) {
    TimeLab lab;
    for (const auto timeout : {std::chrono::milliseconds::max(), std::chrono::milliseconds(0)}) {
        lab.internet.answer("a.example", 200);
        HTTPRequest request = ProbingLab::request("https://a.example/");
        request.timeout = timeout;
        const auto fetch = lab.start(lab.client.fetch(request, websitePolicy(*request.url)));
        lab.settle();
        EXPECT_EQ(ProbingLab::outcome(fetch), "status 200");
        EXPECT_GE(lab.internet.sent().back().totalTimeout, 2s);
    }
}

} // namespace
} // namespace kestrin
