#include "probing/ProbingLab.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

SecureRequestPolicy feedPolicy(const std::string& text, std::int64_t maximumBodyBytes = 262144) {
    return providerPolicy({urlOf(text)}, maximumBodyBytes);
}

TEST(Fetching, givesTheBodyTheStatusAndTheContentTypeOfAFeed) {
    ProbingLab lab;
    lab.names->answer("s.example", {"192.88.99.1"});
    ScriptedTransport::Answer answer;
    answer.response = {200, "application/json; charset=utf-8", {}, "{}"};
    lab.internet.answer("s.example", answer);

    const auto fetch = lab.startFetch("https://s.example/feed", feedPolicy("https://s.example/feed"));
    lab.settle();

    const FreshHTTPResponse expected{"{}", 200, "application/json; charset=utf-8"};
    EXPECT_EQ(fetch.take(), expected);
}

TEST(Fetching, sendsTheJudgedDestinationTheCallersHeadersAndThePinnedAddresses) {
    ProbingLab lab;
    lab.names->answer("A.Example", {"192.88.99.1", "2606:4700::1"});
    lab.internet.answer("A.Example", 200);

    EXPECT_EQ(lab.outcomeOfWebsite("HTTPS://A.Example:8443/a b?c[]=1#top"), "status 200");

    HTTPHopRequest expected;
    expected.scheme = "https";
    expected.host = "A.Example";
    expected.port = 8443;
    expected.target = "/a%20b?c[]=1";
    expected.headers = {{"User-Agent", "test/1"}};
    expected.addresses = {"192.88.99.1", "2606:4700::1"};
    expected.headersOnly = true;
    expected.maximumBodyBytes = 0;
    expected.inactivityTimeout = 15s;
    expected.totalTimeout = 17s;
    ASSERT_EQ(lab.internet.sent().size(), 1U);
    const HTTPHopRequest sent = lab.internet.sent().front();
    EXPECT_EQ(sent.scheme, expected.scheme);
    EXPECT_EQ(sent.host, expected.host);
    EXPECT_EQ(sent.port, expected.port);
    EXPECT_EQ(sent.target, expected.target);
    EXPECT_EQ(sent.headers, expected.headers);
    EXPECT_EQ(sent.addresses, expected.addresses);
    EXPECT_EQ(sent.headersOnly, expected.headersOnly);
    EXPECT_EQ(sent.maximumBodyBytes, expected.maximumBodyBytes);
    EXPECT_EQ(sent.inactivityTimeout, expected.inactivityTimeout);
    EXPECT_EQ(sent.totalTimeout, expected.totalTimeout);
}

TEST(Fetching, anIPv6AddressIsResolvedAndContactedWithoutBrackets) {
    ProbingLab lab;
    lab.names->answer("2606:4700::1111", {"2606:4700::1111"});
    lab.internet.answer("2606:4700::1111", 200);

    EXPECT_EQ(lab.outcomeOfWebsite("https://[2606:4700::1111]/"), "status 200");
    EXPECT_THAT(lab.names->asked(), ElementsAre("2606:4700::1111"));
    EXPECT_THAT(lab.contacted(), ElementsAre("2606:4700::1111:443/"));
}

TEST(Fetching, aRequestWithoutAURLIsRefused) {
    ProbingLab lab;
    const auto fetch = lab.start(lab.client.fetch(HTTPRequest(), websitePolicy(urlOf("https://a.example/"))));
    EXPECT_EQ(ProbingLab::outcome(fetch), "Invalid or disallowed destination: Missing URL");
}

TEST(Fetching, aFirstRequestThatIsRefusedAlsoReadsAsABlockedRedirect) {
    ProbingLab lab;
    EXPECT_EQ(lab.outcomeOfFetch("https://b.example/", websitePolicy(urlOf("https://a.example/"))),
        "Redirect blocked: destination host b.example");
    EXPECT_THAT(lab.names->asked(), IsEmpty());
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(Fetching, aNameWithOnePrivateAddressAmongPublicOnesIsNeverContacted) {
    ProbingLab lab;
    lab.names->answer("A.example.", {"10.0.0.1", "192.88.99.1"});
    EXPECT_EQ(
        lab.outcomeOfWebsite("https://A.example./"), "Private or reserved network destination blocked: a.example");
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(Fetching, aNameThatDoesNotResolveIsNeverContacted) {
    ProbingLab lab;
    EXPECT_EQ(
        lab.outcomeOfWebsite("https://a.example/"), "Private or reserved network destination blocked: a.example");
    EXPECT_THAT(lab.contacted(), IsEmpty());
}

TEST(Fetching, headersOnlySucceedsWithEmptyDataWhateverTheServerDeclares) {
    ProbingLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    ScriptedTransport::Answer answer;
    answer.response = {200, "text/html", {}, std::string(1'000'000, 'x')};
    lab.internet.answer("a.example", answer);

    const auto fetch = lab.startWebsite("https://a.example/");
    lab.settle();

    const FreshHTTPResponse expected{"", 200, "text/html"};
    EXPECT_EQ(fetch.take(), expected);
}

TEST(Fetching, exactlyTheMaximumOfBytesPassesAndOneMoreIsTooLarge) {
    ProbingLab lab;
    lab.names->answer("s.example", {"192.88.99.1"});
    lab.internet.answer("s.example", 200, "12345678");
    lab.internet.answer("s.example", 200, "123456789");

    const auto policy = feedPolicy("https://s.example/", 8);
    EXPECT_EQ(lab.outcomeOfFetch("https://s.example/", policy), "status 200");
    EXPECT_EQ(lab.outcomeOfFetch("https://s.example/", policy), "Response exceeded the 8-byte safety limit");
    EXPECT_EQ(lab.internet.sent().front().maximumBodyBytes, 8);
    EXPECT_FALSE(lab.internet.sent().front().headersOnly);
}

struct HopFailure {
    HTTPHopError error;
    std::string outcome;
};

class FetchingFails : public testing::TestWithParam<HopFailure> {};

TEST_P(FetchingFails, withTheErrorThatBelongsToTheFailureOfTheHop) {
    ProbingLab lab;
    lab.names->answer("s.example", {"192.88.99.1"});
    ScriptedTransport::Answer answer;
    answer.failure = GetParam().error;
    lab.internet.answer("s.example", answer);
    EXPECT_EQ(lab.outcomeOfFetch("https://s.example/x", feedPolicy("https://s.example/x", 9)), GetParam().outcome);
}

INSTANTIATE_TEST_SUITE_P(EachKind, FetchingFails,
    testing::Values(
        HopFailure{{HTTPHopError::Kind::Transport, "The connection was lost."}, "The connection was lost."},
        HopFailure{{HTTPHopError::Kind::Cancelled, ""}, "Cancelled"},
        HopFailure{{HTTPHopError::Kind::ResponseTooLarge, ""}, "Response exceeded the 9-byte safety limit"},
        HopFailure{{HTTPHopError::Kind::NonHTTPResponse, ""}, "Non-HTTP response"},
        HopFailure{{HTTPHopError::Kind::RefusedDestination, ""},
            "Invalid or disallowed destination: https://s.example/x"}));

TEST(Fetching, firstRequestsAreJudgedOneCallAtATimeWhileTransfersOverlap) {
    ProbingLab lab;
    for (const char* host : {"a.example", "b.example"}) {
        lab.names->answer(host, {"192.88.99.1"});
        lab.internet.answer(host, 200);
    }

    const auto first = lab.startWebsite("https://a.example/");
    const auto second = lab.startWebsite("https://b.example/");
    EXPECT_EQ(lab.lookups.waiting(), 1U);
    lab.finishLookup();
    EXPECT_EQ(lab.lookups.waiting(), 1U);
    EXPECT_EQ(lab.transfers.waiting(), 1U);
    lab.finishLookup();
    EXPECT_EQ(lab.transfers.waiting(), 2U);

    EXPECT_THAT(lab.names->asked(), ElementsAre("a.example", "b.example"));
    lab.finishTransfer(1);
    EXPECT_EQ(ProbingLab::outcome(second), "status 200");
    EXPECT_FALSE(first.done());
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(first), "status 200");
}

TEST(Fetching, aRefusedCallHandsOnItsTurn) {
    ProbingLab lab;
    lab.names->answer("b.example", {"192.88.99.1"});
    lab.internet.answer("b.example", 204);
    const auto refused = lab.startWebsite("https://a.example/");
    const auto next = lab.startWebsite("https://b.example/");
    lab.settle();
    EXPECT_EQ(ProbingLab::outcome(refused), "Private or reserved network destination blocked: a.example");
    EXPECT_EQ(ProbingLab::outcome(next), "status 204");
}

TEST(Fetching, copiesOfTheClientTakeTurnsWithOneAnother) {
    ProbingLab lab;
    const FreshHTTPClient copy = lab.client;
    const auto first = lab.startWebsite("https://a.example/");
    const auto second = lab.start(
        copy.fetch(ProbingLab::request("https://b.example/"), websitePolicy(urlOf("https://b.example/"))));
    EXPECT_EQ(lab.lookups.waiting(), 1U);
    lab.settle();
    EXPECT_TRUE(first.done() && second.done());
}

} // namespace
} // namespace kestrin
