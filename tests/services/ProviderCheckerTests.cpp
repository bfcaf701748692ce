#include "services/ProviderChecker.h"

#include "probing/TransportError.h"
#include "services/ProviderCheckLab.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using Category = ProviderFailureCategory;
using testing::ElementsAre;
using testing::IsEmpty;
using Lab = ProviderCheckLab;

TEST(CheckingAService, thatAnswersTakesItsStateSummaryAndTime) {
    Lab lab;
    lab.feeds.answer(Lab::first, 200, statuspage("minor", "Partially  degraded"));
    ProviderCheckRecord expected;
    expected.timestamp = "2026-01-31T09:05:00Z";
    expected.providerID = "svc";
    expected.endpoint = Lab::first;
    expected.httpStatus = 200;
    expected.elapsedMS = 0;
    expected.state = ProviderState::degraded;
    expected.summary = "Partially degraded";
    expected.officialUpdatedAt = "2026-01-31T08:00:00Z";
    EXPECT_EQ(lab.recordOf(), expected);
}

TEST(CheckingAService, stopsAtTheFirstEndpointThatGivesAState) {
    Lab lab;
    lab.feeds.answer(Lab::first, 204, statuspage("none", "Fine"));
    EXPECT_EQ(lab.recordOf().httpStatus, 204);
    EXPECT_THAT(lab.feeds.urls(), ElementsAre(Lab::first));
}

TEST(CheckingAService, whoseFirstEndpointIsMissingSucceedsAtTheSecondAndTheFirstFailureLeavesNoTrace) {
    Lab lab;
    lab.feeds.answer(Lab::first, 404, statuspage("critical", "Down"));
    lab.feeds.answer(Lab::second, 200, statuspage("none", "All Systems Operational"));
    const ProviderCheckRecord record = lab.recordOf();
    EXPECT_EQ(record.endpoint, Lab::second);
    EXPECT_EQ(record.httpStatus, 200);
    EXPECT_EQ(record.state, ProviderState::operational);
    EXPECT_EQ(record.summary, "All Systems Operational");
    EXPECT_EQ(record.error, std::nullopt);
    EXPECT_EQ(record.failureCategory, std::nullopt);
}

TEST(CheckingAService, whoseEndpointsBothAnswer503IsUnavailableWithBothLinesInOrder) {
    Lab lab;
    lab.feeds.answer(Lab::first, 503);
    lab.feeds.answer(Lab::second, 503);
    EXPECT_EQ(lab.recordOf(), Lab::failure(Lab::second, 503, Category::unavailable,
                                  "/api/v2/status.json: HTTP 503; /api/v2/summary.json: HTTP 503"));
}

TEST(CheckingAService, aPageInHTMLOutweighsAServerThatIsUnavailable) {
    Lab lab;
    lab.feeds.answer(Lab::first, 200, "<html>", "text/html; charset=utf-8");
    lab.feeds.answer(Lab::second, 503);
    EXPECT_EQ(lab.recordOf(), Lab::failure(Lab::second, 503, Category::unsupportedFormat,
                                  "/api/v2/status.json: unsupported Content-Type; /api/v2/summary.json: HTTP 503"));
}

TEST(CheckingAService, anUnknownStatusFollowedByATimeOutKeepsItsSummaryTimeAndHTTPStatus) {
    Lab lab;
    lab.feeds.answer(Lab::first, 203, statuspage("purple", "Something odd"));
    lab.feeds.fail(Lab::second, TransportError("The request timed out."));
    ProviderCheckRecord expected = Lab::failure(Lab::second, 203, Category::changedSchema,
        "/api/v2/status.json: unrecognized status; /api/v2/summary.json: The request timed out.");
    expected.summary = "Something odd";
    expected.officialUpdatedAt = "2026-01-31T08:00:00Z";
    EXPECT_EQ(lab.recordOf(), expected);
}

TEST(CheckingAService, ofTwoUnknownStatusesTheLastIsRemembered) {
    Lab lab;
    lab.feeds.answer(Lab::first, 200, statuspage("purple", "First"));
    lab.feeds.answer(Lab::second, 200, R"({"page":{},"status":{"indicator":"purple","description":"Last"}})");
    const ProviderCheckRecord record = lab.recordOf();
    EXPECT_EQ(record.summary, "Last");
    EXPECT_EQ(record.officialUpdatedAt, std::nullopt) << "both come from the same response";
    EXPECT_EQ(record.state, ProviderState::unknown);
}

TEST(CheckingAService, anUnknownStatusLeavesNoTraceInASuccess) {
    Lab lab;
    lab.feeds.answer(Lab::first, 200, statuspage("purple", "Odd"));
    lab.feeds.answer(Lab::second, 200, R"({"page":{},"status":{"indicator":"none","description":""}})");
    const ProviderCheckRecord record = lab.recordOf();
    EXPECT_EQ(record.summary, "Operational");
    EXPECT_EQ(record.officialUpdatedAt, std::nullopt);
    EXPECT_EQ(record.error, std::nullopt);
}

TEST(CheckingAService, keepsTheStatusOfTheLastResponseWhenTheLastEndpointGaveNone) {
    Lab lab;
    lab.feeds.answer(Lab::first, 404);
    lab.feeds.fail(Lab::second, TransportError("The connection was refused."));
    EXPECT_EQ(
        lab.recordOf(), Lab::failure(Lab::second, 404, Category::unavailable,
                            "/api/v2/status.json: HTTP 404; /api/v2/summary.json: The connection was refused."));
}

TEST(CheckingAService, asksWithTheProgramsNameForAFreshAnswerWithinItsShareOfTheTime) {
    Lab lab;
    lab.feeds.answer(Lab::first, 500);
    lab.feeds.answer(Lab::second, 500);
    (void)lab.recordOf();
    const std::vector<HTTPHeader> headers = {{"User-Agent", "kestrin-service-status/2.0"},
        {"Cache-Control", "no-cache, no-store, max-age=0"}, {"Pragma", "no-cache"}};
    ASSERT_EQ(lab.feeds.requests().size(), 2U);
    for (const ScriptedFeeds::Request& asked : lab.feeds.requests()) {
        EXPECT_EQ(asked.request.headers, headers);
        EXPECT_EQ(asked.request.timeout, 7500ms);
        EXPECT_EQ(asked.policy, providerPolicy(Lab::service().statusURLs, 262'144));
        EXPECT_EQ(asked.policy.maximumRedirects, 2);
    }
}

TEST(CheckingAService, withOneEndpointGivesItTheWholeTime) {
    Lab lab;
    lab.feeds.answer("https://status.example.com/index.json", 500);
    (void)lab.recordOf(Lab::service(ProviderSource::custom, "betterstack-index"));
    EXPECT_EQ(lab.feeds.requests().front().request.timeout, 15s);
}

TEST(CheckingAService, givesNoEndpointLessThanThreeSeconds) {
    Lab lab;
    ProviderDefinition service = Lab::service();
    for (int number = 0; service.statusURLs.size() < 6; ++number)
        service.statusURLs.push_back(webURL("https://status.example.com/" + std::to_string(number)));
    (void)lab.recordOf(service);
    ASSERT_EQ(lab.feeds.requests().size(), 6U);
    for (const ScriptedFeeds::Request& asked : lab.feeds.requests())
        EXPECT_EQ(asked.request.timeout, 3s);
}

TEST(CheckingAService, resolvesEveryHostOnce) {
    Lab lab;
    ProviderDefinition service = Lab::service();
    service.statusURLs.push_back(webURL("https://other.example.com/x"));
    lab.feeds.answer(Lab::first, 200, statuspage("none", "Fine"));
    (void)lab.recordOf(service);
    EXPECT_THAT(lab.feeds.hosts(), ElementsAre("status.example.com", "other.example.com"));
}

TEST(CheckingAService, withOnePrivateAddressAmongPublicOnesIsRefusedBeforeAnyRequest) {
    Lab lab;
    lab.feeds.resolve("status.example.com", {true, {"10.0.0.1", "192.88.99.1"}, std::nullopt});
    EXPECT_EQ(lab.recordOf(), Lab::failure(Lab::first, std::nullopt, Category::unsafeDestination,
                                  "Private or reserved network destination blocked: status.example.com: "
                                  "Private or reserved network destination blocked"));
    EXPECT_THAT(lab.feeds.urls(), IsEmpty());
}

TEST(CheckingAService, thatResolvesToNoAddressIsRefusedToo) {
    Lab lab;
    lab.feeds.resolve("status.example.com", {true, {}, std::nullopt});
    EXPECT_EQ(lab.recordOf().failureCategory, Category::unsafeDestination);
    EXPECT_THAT(lab.feeds.urls(), IsEmpty());
}

TEST(CheckingAService, theFirstHostThatIsRefusedEndsTheCheck) {
    Lab lab;
    ProviderDefinition service = Lab::service();
    service.statusURLs.push_back(webURL("https://private.example.com/x"));
    service.statusURLs.push_back(webURL("https://late.example.com/x"));
    lab.feeds.resolve("private.example.com", {true, {"127.0.0.1"}, std::nullopt});
    EXPECT_EQ(lab.recordOf(service).error, "Private or reserved network destination blocked: private.example.com: "
                                           "Private or reserved network destination blocked");
    EXPECT_THAT(lab.feeds.hosts(), ElementsAre("status.example.com", "private.example.com"));
}

TEST(CheckingAService, countsWholeMillisecondsInEveryRecordAlsoOfTheEarliestFailures) {
    Lab lab;
    ProviderDefinition service = Lab::service();
    service.adapter.version = 2;
    EXPECT_EQ(lab.recordOf(service).elapsedMS, 0);
    lab.feeds.resolve("status.example.com", {false, {}, "DNS: No"}, [&] { lab.clock.advance(1s + 999'999ns); });
    EXPECT_EQ(lab.recordOf().elapsedMS, 1'000);
    lab.feeds.resolve("status.example.com", {true, {"192.88.99.1"}, {}}, [&] { lab.clock.advance(2s + 30ms); });
    lab.feeds.answer(
        Lab::first, {statuspage("none", "Fine"), 200, "application/json"}, [&] { lab.clock.advance(1'970'999us); });
    EXPECT_EQ(lab.recordOf().elapsedMS, 4'000);
}

TEST(CheckingAService, isStampedAtItsEnd) {
    Lab lab;
    lab.feeds.answer(Lab::first, {statuspage("none", "Fine"), 200, "application/json"}, [&] { lab.today += 7s; });
    EXPECT_EQ(lab.recordOf().timestamp, "2026-01-31T09:05:07Z");
}

TEST(CheckingAService, aCustomOneThatFailsSaysStatusUnavailableAnIncludedOneOfficialStatusUnavailable) {
    Lab lab;
    lab.feeds.answer(Lab::first, 503);
    lab.feeds.answer(Lab::second, 503);
    EXPECT_EQ(lab.recordOf(Lab::service(ProviderSource::custom)).summary, "Status unavailable");
    lab.feeds.answer(Lab::first, 503);
    lab.feeds.answer(Lab::second, 503);
    EXPECT_EQ(lab.recordOf(Lab::service(ProviderSource::bundledOfficial)).summary, "Official status unavailable");
}

TEST(CheckingAService, withoutEndpointsNamesItsPublicPage) {
    Lab lab;
    ProviderDefinition service = Lab::service();
    service.statusURLs.clear();
    EXPECT_EQ(lab.recordOf(service), Lab::failure(Lab::page, std::nullopt, Category::unsafeDestination,
                                         "Invalid or disallowed destination: Unsupported status adapter"));
    EXPECT_THAT(lab.feeds.hosts(), IsEmpty());
}

TEST(CheckingAService, aBrokenResolverOrNetworkIsARecordToo) {
    Lab lab;
    lab.feeds.fail(Lab::first, std::bad_alloc());
    lab.feeds.fail(Lab::second, std::runtime_error("inner words"));
    EXPECT_EQ(
        lab.recordOf(), Lab::failure(Lab::second, std::nullopt, Category::unreachable,
                            "/api/v2/status.json: The request failed.; /api/v2/summary.json: The request failed."));
    lab.feeds.failToResolve("status.example.com", std::bad_alloc());
    EXPECT_EQ(lab.recordOf(), Lab::failure(Lab::first, std::nullopt, Category::unreachable, "The request failed."));
}

TEST(CheckingAService, readsEveryFeedFormatAtItsOwnEndpoint) {
    Lab lab;
    lab.feeds.answer("https://status.example.com/summary.json", 200, instatus());
    EXPECT_EQ(
        lab.recordOf(Lab::service(ProviderSource::custom, "instatus-summary")).state, ProviderState::operational);
    lab.feeds.answer("https://status.example.com/index.json", 200,
        R"({"data":{"type":"status_page","attributes":{"aggregate_state":"downtime"}}})");
    EXPECT_EQ(lab.recordOf(Lab::service(ProviderSource::custom, "betterstack-index")).state, ProviderState::outage);
    ProviderDefinition slack = Lab::service();
    slack.adapter = {"slack-status-v2", 1};
    slack.statusURLs = statusEndpoints(webURL("https://slack-status.com/"), "slack-status-v2", 1);
    lab.feeds.answer("https://slack-status.com/api/v2.0.0/current", 200, slackFeed("ok"));
    EXPECT_EQ(lab.recordOf(slack).summary, "All Systems Operational");
}

} // namespace
} // namespace kestrin
