#include "probing/ProbingLab.h"
#include "services/CustomProviderPreview.h"
#include "services/KnownServices.h"
#include "services/ProviderChecker.h"
#include "services/ProviderPreviewError.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using Category = ProviderFailureCategory;
using testing::ElementsAre;
using testing::IsEmpty;

/// The real client and resolver between a check and a scripted internet.
struct LiveLab : ProbingLab {
    ProviderChecker checker{clock, [] { return std::chrono::sys_seconds(); }};
    ProviderDefinition service = bundledProviderDefinitions().front();
    std::string host = service.publicStatusURL.host;

    LiveLab() { names->answer(host, {"192.88.99.1"}); }

    void answers(
        std::int64_t status, std::string body, std::optional<std::string> contentType = "application/json") {
        ScriptedTransport::Answer answer;
        answer.response.status = status;
        answer.response.body = std::move(body);
        answer.response.contentType = std::move(contentType);
        internet.answer(host, std::move(answer));
    }
    /// A Statuspage document of exactly so many bytes.
    static std::string documentOf(std::size_t bytes) {
        const std::string head = R"({"page":{},"status":{"indicator":"none","description":"Fine"},"rest":")";
        return head + std::string(bytes - head.size() - 2, 'x') + "\"}";
    }
    TaskHandle<ProviderCheckRecord> startCheck() {
        return start(checker.checkProvider(service, liveProviderCheckDependencies(client, resolver), 15s));
    }
    ProviderCheckRecord record() {
        const auto check = startCheck();
        settle();
        return check.take();
    }
};

TEST(CheckingAServiceForReal, fetchesTheFeedWithinItsTimeAndSize) {
    LiveLab lab;
    lab.answers(200, LiveLab::documentOf(262'144));
    const ProviderCheckRecord record = lab.record();
    EXPECT_EQ(record.state, ProviderState::operational);
    EXPECT_EQ(record.summary, "Fine");
    ASSERT_EQ(lab.internet.sent().size(), 1U);
    EXPECT_EQ(lab.internet.sent().front().inactivityTimeout, 7500ms);
    EXPECT_EQ(lab.internet.sent().front().maximumBodyBytes, 262'144);
    EXPECT_EQ(lab.internet.sent().front().target, "/api/v2/status.json");
}

TEST(CheckingAServiceForReal, aResponseOneByteOverTheLimitIsMalformed) {
    LiveLab lab;
    lab.answers(200, LiveLab::documentOf(262'145));
    lab.answers(200, LiveLab::documentOf(262'145));
    const ProviderCheckRecord record = lab.record();
    EXPECT_EQ(record.failureCategory, Category::malformed);
    EXPECT_EQ(record.error, "/api/v2/status.json: Response exceeded the 262144-byte safety limit; "
                            "/api/v2/summary.json: Response exceeded the 262144-byte safety limit");
    EXPECT_EQ(record.httpStatus, std::nullopt);
}

TEST(CheckingAServiceForReal, mayBeRedirectedAmongItsOwnEndpointsAlone) {
    LiveLab lab;
    lab.internet.redirect(lab.host, {"/api/v2/summary.json"});
    lab.answers(200, LiveLab::documentOf(200));
    const ProviderCheckRecord record = lab.record();
    EXPECT_EQ(record.state, ProviderState::operational);
    EXPECT_EQ(record.endpoint, lab.service.statusURLs.front().text);

    LiveLab other;
    other.internet.redirect(other.host, {"/index.html"});
    other.internet.redirect(other.host, {"https://elsewhere.example/api/v2/status.json"});
    const ProviderCheckRecord refused = other.record();
    EXPECT_EQ(refused.failureCategory, Category::unsafeDestination);
    EXPECT_EQ(refused.error, "/api/v2/status.json: Redirect blocked: unapproved provider endpoint; "
                             "/api/v2/summary.json: Redirect blocked: destination host elsewhere.example");
}

TEST(CheckingAServiceForReal, anAddressThatTurnsPrivateBeforeTheRequestIsNotContacted) {
    LiveLab lab;
    lab.names->answer(lab.host, {"127.0.0.1"});
    const ProviderCheckRecord record = lab.record();
    EXPECT_EQ(
        record.error, "/api/v2/status.json: Private or reserved network destination blocked: " + lab.host +
                          "; /api/v2/summary.json: Private or reserved network destination blocked: " + lab.host);
    EXPECT_EQ(record.failureCategory, Category::unsafeDestination);
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(CheckingAServiceForReal, thatIsSilentTakesTheShareOfBothEndpoints) {
    LiveLab lab;
    ScriptedTransport::Answer silence;
    silence.waits = {1min};
    lab.internet.answer(lab.host, silence);
    lab.internet.answer(lab.host, silence);
    const ProviderCheckRecord record = lab.record();
    EXPECT_EQ(record.elapsedMS, 15'000);
    EXPECT_EQ(
        record.error, "/api/v2/status.json: The request timed out.; /api/v2/summary.json: The request timed out.");
}

TEST(CheckingAServiceForReal, cancelledWhileItsNameIsLookedUpWaitsForTheLookup) {
    LiveLab lab;
    const auto check = lab.startCheck();
    check.cancel();
    lab.runExecutors();
    EXPECT_FALSE(check.done());
    lab.finishLookup();
    EXPECT_EQ(check.take().error, "Cancelled");
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(CheckingAServiceForReal, cancelledDuringATransferIsRecordedAsCancelled) {
    LiveLab lab;
    TaskHandle<ProviderCheckRecord> check;
    ScriptedTransport::Answer answer;
    answer.meanwhile = [&check] { check.cancel(); };
    lab.internet.answer(lab.host, answer);
    check = lab.startCheck();
    lab.settle();
    const ProviderCheckRecord record = check.take();
    EXPECT_EQ(record.error, "Cancelled");
    EXPECT_EQ(record.failureCategory, Category::unreachable);
    EXPECT_EQ(lab.internet.sent().size(), 1U);
}

TEST(CheckingAServiceForReal, atTheProgramsEndDoesNotWaitForAStuckLookup) {
    LiveLab lab;
    const auto check = lab.startCheck();
    lab.shutdown.request_stop();
    lab.runExecutors();
    EXPECT_EQ(check.take().error, "Cancelled");
}

TEST(CheckingAServiceForReal, whoseNameHangsEndsAfterThirtySecondsAndSaysSo) {
    LiveLab lab;
    const auto check = lab.startCheck();
    lab.clock.advance(30s);
    lab.runExecutors();
    ASSERT_TRUE(check.done());
    const ProviderCheckRecord record = check.take();
    EXPECT_EQ(record.error,
        "Private or reserved network destination blocked: " + lab.host + ": DNS: The lookup did not return");
    EXPECT_EQ(record.failureCategory, Category::unsafeDestination);
    EXPECT_EQ(record.elapsedMS, 30'000);
    EXPECT_THAT(lab.contacted(), IsEmpty());

    const auto again = lab.startCheck();
    ASSERT_TRUE(again.done()) << "a name that hangs is not asked again";
    EXPECT_EQ(again.take().error, record.error);
    EXPECT_EQ(lab.resolver.abandonedCount(), 1U);
    lab.finishLookup();
    lab.answers(200, LiveLab::documentOf(200));
    EXPECT_EQ(lab.record().state, ProviderState::operational);
}

TEST(CheckingAServiceForReal, whoseNameHangsEndsAfterThirtySecondsAlsoWhenCancelled) {
    LiveLab lab;
    const auto check = lab.startCheck();
    check.cancel();
    lab.clock.advance(30s);
    lab.runExecutors();
    ASSERT_TRUE(check.done());
    EXPECT_EQ(check.take().error, "Cancelled");
}

TEST(PreviewingForReal, aPageWhoseNameHangsIsUnreachableAfterThirtySeconds) {
    LiveLab lab;
    const auto preview = lab.start(previewCustomProvider(
        lab.service.publicStatusURL.text, liveProviderCheckDependencies(lab.client, lab.resolver), 15s));
    lab.clock.advance(30s);
    lab.runExecutors();
    ASSERT_TRUE(preview.done());
    try {
        static_cast<void>(preview.take());
        FAIL() << "there is a preview";
    } catch (const ProviderPreviewError& error) {
        EXPECT_EQ(error.category, Category::unreachable);
        EXPECT_EQ(error.details, "DNS: The lookup did not return");
    }
}

TEST(PreviewingForReal, probesOneFormatAfterTheOtherUnderItsOwnPolicy) {
    LiveLab lab;
    lab.internet.redirect(lab.host, {"/summary.json"});
    lab.answers(200, R"({"page":{"status":"UP"}})");
    const auto preview = lab.start(previewCustomProvider(
        lab.service.publicStatusURL.text, liveProviderCheckDependencies(lab.client, lab.resolver), 15s));
    lab.settle();
    const CustomProviderPreview shown = preview.take();
    EXPECT_EQ(shown.adapter.id, "instatus-summary") << "the first probe may not go where the second may";
    EXPECT_EQ(shown.name, lab.host);
    EXPECT_THAT(lab.contacted(), ElementsAre(lab.host + ":443/api/v2/status.json", lab.host + ":443/summary.json"));
}

} // namespace
} // namespace kestrin
