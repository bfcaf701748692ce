#include "services/CustomProviderPreview.h"

#include "fakes/ManualExecutor.h"
#include "fakes/ScriptedFeeds.h"
#include "probing/SecureHTTPError.h"
#include "probing/TransportError.h"
#include "services/FeedBodies.h"
#include "services/ProviderPreviewError.h"
#include "tasks/CancellationError.h"
#include "tasks/Spawn.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using Category = ProviderFailureCategory;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* page = "https://status.example.com/";
constexpr const char* statuspageProbe = "https://status.example.com/api/v2/status.json";
constexpr const char* instatusProbe = "https://status.example.com/summary.json";
constexpr const char* slackProbe = "https://slack-status.com/api/v2.0.0/current";

struct PreviewLab {
    ManualExecutor executor;
    ScriptedFeeds feeds;
    TaskHandle<CustomProviderPreview> preview;

    void start(const std::string& input) {
        preview = spawn(executor, previewCustomProvider(input, feeds.dependencies(), 15s));
    }
    CustomProviderPreview previewOf(const std::string& input = page) {
        start(input);
        executor.runUntilIdle();
        return preview.take();
    }
    /// "category: details" of a preview that is refused.
    std::string refusalOf(const std::string& input = page) {
        try {
            return "a preview of " + previewOf(input).name;
        } catch (const ProviderPreviewError& error) {
            EXPECT_EQ(error.message, previewErrorText(error.category));
            return std::string(persistedName(error.category)) + ": " + error.details;
        }
    }
    bool isCancelled(const std::string& input = page) {
        try {
            (void)previewOf(input);
        } catch (const CancellationError&) {
            return true;
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
        }
        return false;
    }
    std::function<void()> cancellation() {
        return [this] { preview.cancel(); };
    }
};

TEST(PreviewingAStatusPage, showsWhatItsFeedSays) {
    PreviewLab lab;
    lab.feeds.answer(statuspageProbe, 200, statuspage("minor", "Some trouble"));
    CustomProviderPreview expected;
    expected.name = "Example Cloud";
    expected.state = ProviderState::degraded;
    expected.summary = "Some trouble";
    expected.statusPageURL = webURL(page);
    expected.endpoint = webURL(statuspageProbe);
    expected.adapter = {"statuspage-v2", 1};
    EXPECT_EQ(lab.previewOf(), expected);
    EXPECT_THAT(lab.feeds.urls(), ElementsAre(statuspageProbe)) << "the first success ends the preview";
}

TEST(PreviewingAStatusPage, whoseStatuspageProbeIsMissingAndWhoseInstatusProbeAnswersIsAnInstatusPage) {
    PreviewLab lab;
    lab.feeds.answer(statuspageProbe, 404);
    lab.feeds.answer(instatusProbe, 200, instatus());
    const CustomProviderPreview preview = lab.previewOf();
    EXPECT_EQ(preview.adapter, (ProviderAdapterIdentity{"instatus-summary", 1}));
    EXPECT_EQ(preview.endpoint, webURL(instatusProbe));
    EXPECT_EQ(preview.state, ProviderState::operational);
}

TEST(PreviewingAStatusPage, inHTMLWhoseOtherProbeIsMissingIsUnavailableWithTwoLines) {
    PreviewLab lab;
    lab.feeds.answer(statuspageProbe, 200, "<html>", "text/html");
    lab.feeds.answer(instatusProbe, 404);
    EXPECT_EQ(
        lab.refusalOf(), "unavailable: /api/v2/status.json: unsupported Content-Type\n/summary.json: HTTP 404");
}

TEST(PreviewingAStatusPage, withAnUnknownIndicatorIsAChangedFormatEvenIfTheOtherProbeIsMissing) {
    PreviewLab lab;
    lab.feeds.answer(statuspageProbe, 200, statuspage("purple", "Odd"));
    lab.feeds.answer(instatusProbe, 404);
    EXPECT_EQ(lab.refusalOf(), "changed_schema: /api/v2/status.json: unrecognized or inconsistent current "
                               "state\n/summary.json: HTTP 404");
}

TEST(PreviewingAStatusPage, onSlacksHostWithAPathKeepsTheSlackAdapterAndDiscardsThePath) {
    PreviewLab lab;
    lab.feeds.answer(slackProbe, 200, slackFeed("ok"));
    const CustomProviderPreview preview = lab.previewOf("https://slack-status.com/calendar/2026");
    EXPECT_EQ(preview.adapter, (ProviderAdapterIdentity{"slack-status-v2", 1}));
    EXPECT_EQ(preview.endpoint, webURL(slackProbe));
    EXPECT_EQ(preview.statusPageURL, webURL("https://slack-status.com/calendar/2026"));
    EXPECT_EQ(preview.name, "Slack");
}

TEST(PreviewingAStatusPage, onASlackHostInCapitalsWithATrailingDotIsStillSlack) {
    PreviewLab lab;
    lab.feeds.answer(slackProbe, 200, slackFeed("ok"));
    EXPECT_EQ(lab.previewOf("https://SLACK-Status.COM./").adapter.id, "slack-status-v2");
}

TEST(PreviewingAStatusPage, onSlacksHostIsProbedForNothingElse) {
    PreviewLab lab;
    lab.feeds.answer(slackProbe, 404);
    EXPECT_EQ(lab.refusalOf("https://slack-status.com/"), "unavailable: /api/v2.0.0/current: HTTP 404");
    EXPECT_THAT(lab.feeds.urls(), ElementsAre(slackProbe));
    EXPECT_EQ(lab.feeds.requests().front().request.timeout, 15s);
}

TEST(PreviewingAStatusPage, whoseFeedHasNoNameIsCalledAfterItsHost) {
    PreviewLab lab;
    const std::string probe = "https://status.example.com/api/v2/status.json";
    for (const char* named : {"{}", R"({"name":null})", R"({"name":" \t "})"}) {
        lab.feeds.answer(
            probe, 200, std::string(R"({"status":{"indicator":"none","description":""},"page":)") + named + "}");
        EXPECT_EQ(lab.previewOf("https://Status.Example.COM./page").name, "status.example.com") << named;
    }
}

TEST(PreviewingAStatusPage, aURLWithAQueryIsRefusedWithoutAnyUseOfTheNetwork) {
    PreviewLab lab;
    EXPECT_EQ(lab.refusalOf("https://status.example.com/?page=1"),
        "unsafe_destination: Public status page URLs cannot contain a query or fragment.");
    EXPECT_THAT(lab.feeds.hosts(), IsEmpty());
    EXPECT_THAT(lab.feeds.urls(), IsEmpty());
}

TEST(PreviewingAStatusPage, aURLThatThePolicyRefusesIsToldInThePolicysWords) {
    PreviewLab lab;
    EXPECT_EQ(lab.refusalOf("status.example.com"), "unsafe_destination: Enter a complete public status page URL.");
    EXPECT_EQ(
        lab.refusalOf("http://status.example.com/"), "unsafe_destination: Public status page URLs must use HTTPS.");
    EXPECT_EQ(lab.refusalOf("https://127.0.0.1/"),
        "unsafe_destination: Private, local, and reserved status destinations are blocked.");
    EXPECT_THAT(lab.feeds.hosts(), IsEmpty());
}

TEST(PreviewingAStatusPage, trimsTheBlanksAroundTheInput) {
    PreviewLab lab;
    lab.feeds.answer(statuspageProbe, 200, statuspage("none", "Fine"));
    EXPECT_EQ(lab.previewOf("  https://status.example.com/ \n").statusPageURL, webURL(page));
}

TEST(PreviewingAStatusPage, withAPrivateAddressIsUnsafe) {
    PreviewLab lab;
    lab.feeds.resolve("status.example.com", {true, {"10.0.0.1", "192.88.99.1"}, std::nullopt});
    EXPECT_EQ(lab.refusalOf(), "unsafe_destination: Private or reserved status destination blocked.");
    lab.feeds.resolve("status.example.com", {true, {"10.0.0.1"}, "DNS: Half an answer"});
    EXPECT_EQ(lab.refusalOf(), "unsafe_destination: DNS: Half an answer");
    EXPECT_THAT(lab.feeds.urls(), IsEmpty());
}

TEST(PreviewingAStatusPage, thatDoesNotResolveIsUnreachableUnlikeInACheck) {
    PreviewLab lab;
    lab.feeds.resolve("status.example.com", {false, {}, "DNS: Name or service not known"});
    EXPECT_EQ(lab.refusalOf(), "unreachable: DNS: Name or service not known");
    for (const bool ok : {true, false}) {
        lab.feeds.resolve("status.example.com", {ok, {}, std::nullopt});
        EXPECT_EQ(lab.refusalOf(), "unreachable: DNS returned no public address.") << ok;
    }
    lab.feeds.resolve("status.example.com", {false, {"192.88.99.1"}, std::nullopt});
    EXPECT_EQ(lab.refusalOf(), "unreachable: DNS returned no public address.");
    lab.feeds.failToResolve("status.example.com", std::bad_alloc());
    EXPECT_EQ(lab.refusalOf(), "unreachable: The request failed.");
    EXPECT_THAT(lab.feeds.urls(), IsEmpty());
}

TEST(PreviewingAStatusPage, asksEachProbeForAFreshAnswerUnderAPolicyOfItsOwn) {
    PreviewLab lab;
    lab.feeds.answer(statuspageProbe, 404);
    lab.feeds.answer(instatusProbe, 404);
    (void)lab.refusalOf();
    const std::vector<HTTPHeader> headers = {{"User-Agent", "kestrin-service-status/2.0"},
        {"Cache-Control", "no-cache, no-store, max-age=0"}, {"Pragma", "no-cache"}};
    EXPECT_THAT(lab.feeds.urls(), ElementsAre(statuspageProbe, instatusProbe));
    for (const ScriptedFeeds::Request& asked : lab.feeds.requests()) {
        EXPECT_EQ(asked.request.headers, headers);
        EXPECT_EQ(asked.request.timeout, 7500ms);
        EXPECT_EQ(asked.policy, providerPolicy({*asked.request.url}, 262'144));
    }
    EXPECT_THAT(lab.feeds.hosts(), ElementsAre("status.example.com"));
}

TEST(CancellingAPreview, isThrownAsSuchWhereverItHappens) {
    PreviewLab early;
    early.start(page);
    early.preview.cancel();
    early.executor.runUntilIdle();
    EXPECT_THROW((void)early.preview.take(), CancellationError);
    EXPECT_THAT(early.feeds.hosts(), IsEmpty());

    PreviewLab resolving;
    resolving.feeds.resolve("status.example.com", {false, {}, "DNS: Gone"}, resolving.cancellation());
    EXPECT_TRUE(resolving.isCancelled());

    PreviewLab ending;
    ending.feeds.failToResolve("status.example.com", CancellationError());
    EXPECT_TRUE(ending.isCancelled());

    PreviewLab fetching;
    fetching.feeds.fail(statuspageProbe, CancellationError());
    EXPECT_TRUE(fetching.isCancelled());
    EXPECT_THAT(fetching.feeds.urls(), ElementsAre(statuspageProbe));

    PreviewLab betweenProbes;
    betweenProbes.feeds.answer(
        statuspageProbe, FreshHTTPResponse{"", 404, std::nullopt}, betweenProbes.cancellation());
    EXPECT_TRUE(betweenProbes.isCancelled());
    EXPECT_THAT(betweenProbes.feeds.urls(), ElementsAre(statuspageProbe));

    PreviewLab tooLate;
    tooLate.feeds.answer(
        statuspageProbe, {statuspage("none", "Fine"), 200, "application/json"}, tooLate.cancellation());
    EXPECT_TRUE(tooLate.isCancelled());
}

} // namespace
} // namespace kestrin
