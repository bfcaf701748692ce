#include "probing/WebsiteChecker.h"

#include "probing/ProbingLab.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

struct CheckLab : ProbingLab {
    std::chrono::sys_seconds today{std::chrono::sys_days{std::chrono::year(2026) / 1 / 31} + 9h + 5min};
    WebsiteChecker checker{client, resolver, clock, [this] { return today; }};

    TaskHandle<CheckRecord> startCheck(const std::string& text) {
        return start(checker.checkWebsite(SiteDefinition{"site-1", "Site", text, true}, 15s));
    }
    CheckRecord recordOf(const std::string& text) {
        const auto check = startCheck(text);
        settle();
        return check.take();
    }
    /// The record of "https://a.example/" in which `dnsOK`, `ips` and what follows are as given.
    static CheckRecord record(bool dnsOK, std::vector<std::string> ips, std::optional<std::int64_t> status, bool up,
        std::optional<std::string> error, std::int64_t elapsedMS = 0) {
        return {"2026-01-31T09:05:00Z", "site-1", "https://a.example/", dnsOK, std::move(ips), status, elapsedMS,
            up, std::move(error)};
    }
};

struct KnownLab : CheckLab {
    KnownLab() { names->answer("a.example", {"192.88.99.1", "2606:4700::1"}); }
    static CheckRecord record(
        std::optional<std::int64_t> status, bool up, std::optional<std::string> error, std::int64_t elapsedMS = 0) {
        return CheckLab::record(true, {"192.88.99.1", "2606:4700::1"}, status, up, std::move(error), elapsedMS);
    }
};

TEST(MakingTheCheckRequest, asksForAFreshAnswer) {
    const HTTPRequest request = makeCheckRequest(urlOf("https://a.example/x"), 15s);
    EXPECT_EQ(request.url, urlOf("https://a.example/x"));
    EXPECT_EQ(request.timeout, 15s);
    const std::vector<HTTPHeader> expected = {{"User-Agent", "kestrin-macos/2.0"},
        {"Cache-Control", "no-cache, no-store, max-age=0"}, {"Pragma", "no-cache"}};
    EXPECT_EQ(request.headers, expected);
}

TEST(ClassifyingAStatus, only200To399IsUp) {
    for (const std::int64_t up : {200, 204, 301, 304, 399})
        EXPECT_TRUE(statusIsUp(up)) << up;
    for (const std::int64_t down : {-1, 0, 103, 199, 400, 404, 500, 599, 999})
        EXPECT_FALSE(statusIsUp(down)) << down;
}

TEST(CheckingAWebsite, thatAnswersIsUp) {
    KnownLab lab;
    lab.internet.answer("a.example", 200);
    EXPECT_EQ(lab.recordOf("https://a.example/"), KnownLab::record(200, true, std::nullopt));
    EXPECT_EQ(lab.internet.sent().front().headers, makeCheckRequest(urlOf("https://a.example/"), 15s).headers);
    EXPECT_EQ(lab.internet.sent().front().inactivityTimeout, 15s);
    EXPECT_TRUE(lab.internet.sent().front().headersOnly);
}

TEST(CheckingAWebsite, thatAnswersWith199Or400IsDownAndWith399Or304IsUp) {
    KnownLab lab;
    for (const std::int64_t status : {199, 400, 503}) {
        lab.internet.answer("a.example", status);
        EXPECT_EQ(
            lab.recordOf("https://a.example/"), KnownLab::record(status, false, "HTTP " + std::to_string(status)));
    }
    for (const std::int64_t status : {304, 399}) {
        lab.internet.answer("a.example", status);
        EXPECT_EQ(lab.recordOf("https://a.example/"), KnownLab::record(status, true, std::nullopt));
    }
}

TEST(CheckingAWebsite, withoutHTTPSFailsWithoutAnyUseOfTheNetwork) {
    CheckLab lab;
    CheckRecord expected = CheckLab::record(false, {}, std::nullopt, false, "Website URLs must use HTTPS.");
    expected.url = "http://a.example/";
    EXPECT_EQ(lab.recordOf("http://a.example/"), expected);
    EXPECT_THAT(lab.names->asked(), IsEmpty());
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(CheckingAWebsite, keepsTheURLAsTypedAndDoesNotTrimIt) {
    CheckLab lab;
    const CheckRecord record = lab.recordOf(" https://a.example/");
    EXPECT_EQ(record.url, " https://a.example/");
    EXPECT_EQ(record.error, "Every website needs a complete HTTPS URL.");
}

TEST(CheckingAWebsite, whoseNameLeadsToAPrivateAddressSendsNothing) {
    CheckLab lab;
    lab.names->answer("a.example", {"10.0.0.1"});
    EXPECT_EQ(lab.recordOf("https://a.example/"), CheckLab::record(true, {"10.0.0.1"}, std::nullopt, false,
                                                      "Private or reserved network destination blocked"));
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(CheckingAWebsite, withOnePrivateAddressAmongPublicOnesRecordsThemAll) {
    CheckLab lab;
    lab.names->answer("a.example", {"192.88.99.1", "fe80::1%eth0"});
    EXPECT_EQ(
        lab.recordOf("https://a.example/"), CheckLab::record(true, {"192.88.99.1", "fe80::1%eth0"}, std::nullopt,
                                                false, "Private or reserved network destination blocked"));
}

TEST(CheckingAWebsite, aShortenedLoopbackAddressIsStoppedAfterItsResolution) {
    CheckLab lab;
    lab.names->answer("127.1", {"127.0.0.1"});
    lab.names->answer("2130706433", {"127.0.0.1"});
    EXPECT_EQ(lab.recordOf("https://127.1/").error, "Private or reserved network destination blocked");
    EXPECT_EQ(lab.recordOf("https://2130706433/").error, "Private or reserved network destination blocked");
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(CheckingAWebsite, thatDoesNotResolveTellsTheResolversWords) {
    CheckLab lab;
    EXPECT_EQ(lab.recordOf("https://a.example/"),
        CheckLab::record(false, {}, std::nullopt, false, "DNS: Name or service not known"));
}

TEST(CheckingAWebsite, thatDoesNotResolveWithoutAReasonIsAnInvalidURL) {
    CheckLab lab;
    lab.names->fail("a.example", std::nullopt);
    EXPECT_EQ(lab.recordOf("https://a.example/"), CheckLab::record(false, {}, std::nullopt, false, "Invalid URL"));
}

TEST(CheckingAWebsite, anAddressThatChangesBetweenTheTwoResolutionsCannotSlipThrough) {
    CheckLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    lab.names->answer("a.example", {"127.0.0.1"});
    EXPECT_EQ(
        lab.recordOf("https://a.example/"), CheckLab::record(true, {"192.88.99.1"}, std::nullopt, false,
                                                "Private or reserved network destination blocked: a.example"));
    EXPECT_THAT(lab.names->asked(), ElementsAre("a.example", "a.example"));
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(CheckingAWebsite, thatIsSilentKeepsItsAddressesAndHasNoStatus) {
    KnownLab lab;
    ScriptedTransport::Answer answer;
    answer.waits = {15s};
    lab.internet.answer("a.example", answer);
    EXPECT_EQ(lab.recordOf("https://a.example/"),
        KnownLab::record(std::nullopt, false, "The request timed out.", 15'000));
}

TEST(CheckingAWebsite, theWholeWaitIsTheResolversPlusSeventeenSeconds) {
    KnownLab lab;
    ScriptedTransport::Answer answer;
    answer.waits = {14s, 14s};
    lab.internet.answer("a.example", answer);
    const auto check = lab.startCheck("https://a.example/");
    lab.clock.advance(29s);
    lab.finishLookup();
    lab.clock.advance(29s);
    lab.settle();
    EXPECT_EQ(check.take(), KnownLab::record(std::nullopt, false, "The request timed out.", 75'000));
}

TEST(CheckingAWebsite, countsWholeMillisecondsFromTheStartTheResolutionIncluded) {
    KnownLab lab;
    ScriptedTransport::Answer answer;
    answer.response.status = 200;
    answer.waits = {30ms};
    lab.internet.answer("a.example", answer);
    const auto check = lab.startCheck("https://a.example/");
    lab.clock.advance(1s + 999'999ns);
    lab.settle();
    EXPECT_EQ(check.take(), KnownLab::record(200, true, std::nullopt, 1'030));
}

TEST(CheckingAWebsite, isStampedAtItsEnd) {
    KnownLab lab;
    lab.internet.answer("a.example", 200);
    const auto check = lab.startCheck("https://a.example/");
    lab.today += 7s;
    lab.settle();
    EXPECT_EQ(check.take().timestamp, "2026-01-31T09:05:07Z");
}

TEST(CheckingAWebsite, followsARedirectAndRecordsTheFirstAddresses) {
    KnownLab lab;
    lab.names->answer("www.a.example", {"192.88.99.7"});
    lab.internet.redirect("a.example", {"https://www.a.example/"});
    lab.internet.answer("www.a.example", 200);
    EXPECT_EQ(lab.recordOf("https://a.example/"), KnownLab::record(200, true, std::nullopt));
}

TEST(CheckingAWebsite, aBlockedRedirectIsAFailureWithoutAStatus) {
    KnownLab lab;
    lab.internet.redirect("a.example", {"https://login.a.example/"});
    EXPECT_EQ(lab.recordOf("https://a.example/"),
        KnownLab::record(std::nullopt, false, "Redirect blocked: destination host login.a.example"));
}

TEST(CheckingAWebsite, aRedirectWithoutATargetCountsAsUp) {
    KnownLab lab;
    lab.internet.redirect("a.example", {}, 302);
    EXPECT_EQ(lab.recordOf("https://a.example/"), KnownLab::record(302, true, std::nullopt));
}

TEST(CheckingAWebsite, aFailureInsideTheMachineIsARecordToo) {
    KnownLab lab;
    ScriptedTransport::Answer answer;
    answer.meanwhile = [] { throw std::bad_alloc(); };
    lab.internet.answer("a.example", answer);
    EXPECT_EQ(lab.recordOf("https://a.example/"), KnownLab::record(std::nullopt, false, "The request failed."));
}

TEST(CancellingACheck, waitsForTheResolutionAndKeepsItsAddresses) {
    KnownLab lab;
    const auto check = lab.startCheck("https://a.example/");
    check.cancel();
    lab.runExecutors();
    EXPECT_FALSE(check.done());
    lab.finishLookup();
    EXPECT_EQ(check.take(), KnownLab::record(std::nullopt, false, "Cancelled"));
    EXPECT_THAT(lab.names->asked(), ElementsAre("a.example"));
}

TEST(CancellingACheck, duringTheTransferKeepsTheAddresses) {
    KnownLab lab;
    TaskHandle<CheckRecord> check;
    ScriptedTransport::Answer answer;
    answer.response.status = 200;
    answer.meanwhile = [&check] { check.cancel(); };
    lab.internet.answer("a.example", answer);
    check = lab.startCheck("https://a.example/");
    lab.settle();
    EXPECT_EQ(check.take(), KnownLab::record(std::nullopt, false, "Cancelled"));
}

TEST(CancellingACheck, atTheProgramsEndDoesNotWaitForAStuckResolution) {
    CheckLab lab;
    const auto check = lab.startCheck("https://a.example/");
    lab.shutdown.request_stop();
    lab.runExecutors();
    EXPECT_EQ(check.take(), CheckLab::record(false, {}, std::nullopt, false, "Cancelled"));
}

TEST(CheckingAWebsite, whenTooManyLookupsAreStuckSaysSo) {
    CheckLab lab;
    for (int count = 0; count < 2; ++count)
        lab.start(lab.resolver.resolveHostUntil("stuck.example", lab.clock.now() + 1s));
    lab.clock.advance(1s);
    lab.runExecutors();
    EXPECT_EQ(lab.startCheck("https://a.example/").take(),
        CheckLab::record(false, {}, std::nullopt, false, "DNS: The lookup did not return"));
}

TEST(CheckingAWebsite, manyAtOnceDoNotDisturbOneAnother) {
    CheckLab lab;
    std::vector<TaskHandle<CheckRecord>> checks;
    for (int number = 0; number < 8; ++number) {
        const std::string host = std::to_string(number) + ".example";
        lab.names->answer(host, {"192.88.99." + std::to_string(number)});
        lab.internet.answer(host, 200 + number);
        checks.push_back(lab.startCheck("https://" + host + "/"));
    }
    lab.settle();
    for (std::size_t number = 0; number < 8; ++number) {
        const CheckRecord record = checks[number].take();
        EXPECT_EQ(record.httpStatus, static_cast<std::int64_t>(200 + number));
        EXPECT_THAT(record.ips, ElementsAre("192.88.99." + std::to_string(number)));
    }
}

} // namespace
} // namespace kestrin
