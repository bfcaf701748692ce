#include "destinations/URLSplitter.h"
#include "fakes/ScriptedResolver.h"
#include "fakes/ScriptedTransport.h"
#include "monitoring/LiveCheckRunner.h"
#include "monitoring/MonitorHarness.h"
#include "probing/WebsiteChecker.h"
#include "services/ProviderAdapters.h"
#include "services/ProviderChecker.h"

namespace kestrin {
namespace {

using std::chrono::minutes;
using std::chrono::seconds;

constexpr const char* didNotReturn = "DNS: The lookup did not return";

std::chrono::sys_seconds midnight() {
    return std::chrono::sys_days{std::chrono::year(2026) / 1 / 31};
}

/// A model whose checks are real, over a scripted internet in which some lookups never return.
class HangingNames : public MonitorTest {
protected:
    ManualExecutor checkExecutor;
    ManualPool transfers;
    ManualPool lookups;
    ScriptedTransport internet{clock};
    std::shared_ptr<ScriptedResolver> names = std::make_shared<ScriptedResolver>();
    std::stop_source programEnds;
    BackgroundResolver resolver{lookups, names, clock, programEnds.get_token()};
    FreshHTTPClient client{FreshHTTPServices{checkExecutor, clock, transfers, internet, resolver}};
    WebsiteChecker websiteChecker{client, resolver, clock, midnight};
    ProviderChecker serviceChecker{clock, midnight};
    std::size_t hanging = 0; ///< how many of the first lookups in the pool never return

    void TearDown() override {
        if (!model) return;
        model.reset();
        programEnds.request_stop();
        goOn();
    }

    /// Loads the websites; those named "hang…" shall never be resolved, the others are up.
    void loadChecked(SiteConfiguration configuration) {
        for (const SiteDefinition& site : configuration.sites)
            answers(site.id + ".example.com", "");
        writeSites(configuration);
        AppModel::Collaborators parts = collaborators();
        const auto checkSite = [this](SiteDefinition site, std::chrono::milliseconds timeout) {
            return websiteChecker.checkWebsite(std::move(site), timeout);
        };
        const auto checkService = [this](ProviderDefinition service, std::chrono::milliseconds timeout) {
            return serviceChecker.checkProvider(
                std::move(service), liveProviderCheckDependencies(client, resolver), timeout);
        };
        parts.checkRunner = liveCheckRunner(checkExecutor, checkSite, checkService);
        model = std::make_unique<AppModel>(std::move(parts));
        goOn();
    }

    /// A host that is there and answers every request.
    void answers(const std::string& host, const std::string& body) {
        names->answer(host, {"192.88.99.1"});
        ScriptedTransport::Answer answer;
        answer.response.status = 200;
        answer.response.contentType = "application/json";
        answer.response.body = body;
        for (int request = 0; request < 100; ++request)
            internet.answer(host, answer);
    }

    /// Everything that does not hang goes on until there is nothing to do.
    void goOn() {
        while (true) {
            while (main.runUntilIdle() + checkExecutor.runUntilIdle() > 0) {
            }
            if (loads.waiting() > 0)
                loads.finish();
            else if (lookups.waiting() > hanging)
                lookups.finish(hanging);
            else if (transfers.waiting() > 0)
                transfers.finish();
            else
                return;
        }
    }

    /// The latest of the lookups that hang return after all.
    void letReturn(std::size_t count) {
        hanging -= count;
        goOn();
    }

    /// Time goes on, and whatever falls due meanwhile happens at its own instant.
    void pass(seconds duration) {
        const Instant end = clock.now() + duration;
        for (auto due = clock.nextDeadline(); due && *due <= end; due = clock.nextDeadline()) {
            clock.advance(*due - clock.now());
            goOn();
        }
        clock.advance(end - clock.now());
        goOn();
    }

    [[nodiscard]] std::int64_t checksOfSite(const std::string& id) const {
        return historyOnDisk(id).totalCheckCount;
    }
    [[nodiscard]] std::string lastError(const std::string& id) const {
        const SiteHistoryProjection history = historyOnDisk(id);
        return history.recentChecks.empty() ? "no check" : history.recentChecks.back().error.value_or("up");
    }
};

TEST_F(HangingNames, doNotKeepOtherWebsitesFromBeingCheckedEveryInterval) {
    hanging = 1;
    loadChecked(configurationOf({"hang", "good"}));
    model->startMonitoring();
    goOn();
    pass(seconds(29));
    EXPECT_EQ(checksOfSite("good"), 0) << "the first cycle waits for its lookup";
    pass(seconds(1));
    EXPECT_EQ(checksOfSite("good"), 1);

    constexpr int cycles = 40;
    pass(minutes(5) * (cycles - 1));
    EXPECT_EQ(checksOfSite("good"), cycles);
    EXPECT_EQ(historyOnDisk("good").successfulCheckCount, cycles);
    EXPECT_EQ(checksOfSite("hang"), cycles);
    for (const CheckRecord& record : historyOnDisk("hang").recentChecks) {
        EXPECT_EQ(record.error, didNotReturn);
        EXPECT_FALSE(record.dnsOK);
    }
    EXPECT_EQ(resolver.abandonedCount(), 1U);

    letReturn(1);
    pass(minutes(5));
    EXPECT_EQ(lastError("hang"), "up") << "the lookup has returned at last";
    EXPECT_EQ(resolver.abandonedCount(), 0U);
}

TEST_F(HangingNames, twoOfThemLeaveCheckNowInWorkingOrder) {
    hanging = 2;
    loadChecked(configurationOf({"hang-1", "hang-2", "good"}));
    model->checkNow();
    goOn();
    EXPECT_TRUE(model->isChecking());
    pass(seconds(30));
    EXPECT_FALSE(model->isChecking());
    EXPECT_EQ(lastError("hang-1"), didNotReturn);
    EXPECT_EQ(lastError("hang-2"), didNotReturn);
    EXPECT_EQ(lastError("good"), "up");

    model->checkNow();
    goOn();
    EXPECT_FALSE(model->isChecking()) << "names that hang are waited for again";
    EXPECT_EQ(checksOfSite("hang-1"), 2);
    EXPECT_EQ(checksOfSite("good"), 2);
}

TEST_F(HangingNames, twoOfThemLetAMonitorThatWasStoppedStartAgainAtOnce) {
    hanging = 2;
    loadChecked(configurationOf({"hang-1", "hang-2", "good"}));
    model->startMonitoring();
    goOn();
    pass(seconds(10));
    model->stopMonitoring();
    model->startMonitoring();
    goOn();
    EXPECT_TRUE(model->isMonitoring());
    EXPECT_TRUE(model->isChecking()) << "the new cycle waits for the places of the old one";
    pass(seconds(20));
    EXPECT_FALSE(model->isChecking());
    EXPECT_EQ(lastError("hang-1"), didNotReturn);
    EXPECT_EQ(lastError("good"), "up");
    EXPECT_EQ(checksOfSite("good"), 1) << "what was stopped was written";
    pass(minutes(5));
    EXPECT_EQ(checksOfSite("good"), 2);
}

TEST_F(HangingNames, delayARestartNoLongerThanTheLookup) {
    hanging = 1;
    loadChecked(configurationOf({"hang", "good"}));
    model->startMonitoring();
    goOn();
    writeSites(configurationOf({"good"}));
    model->restartMonitoring();
    goOn();
    EXPECT_EQ(checksOfSite("good"), 0);
    pass(seconds(30));
    EXPECT_EQ(checksOfSite("good"), 1);
    EXPECT_EQ(checksOfSite("hang"), 0);
}

TEST_F(HangingNames, ofServicesDelayNobodyElseEither) {
    services->included.clear();
    for (const std::string id : {"hang-service", "good-service"}) {
        ProviderDefinition service = FakeServices::serviceNamed(id, id);
        service.publicStatusURL = *splitURL("https://" + id + ".example.com/");
        service.statusURLs = statusEndpoints(service.publicStatusURL, "statuspage-v2", 1);
        services->included.push_back(std::move(service));
        answers(id + ".example.com", R"({"page":{},"status":{"indicator":"none","description":"Fine"}})");
    }
    SiteConfiguration configuration = configurationOf({"good"});
    configuration.providerStatus.enabled = true;
    configuration.providerStatus.providerIDs = {"hang-service", "good-service"};
    hanging = 3; // the website's comes first and returns
    loadChecked(configuration);
    model->startMonitoring();
    goOn();
    ASSERT_EQ(lookups.waiting(), 3U);
    lookups.finish(2);
    lookups.finish(0);
    hanging = 1;
    goOn();
    pass(seconds(30));
    constexpr std::size_t cycles = 10;
    pass(minutes(5) * (cycles - 1));

    EXPECT_EQ(checksOfSite("good"), static_cast<std::int64_t>(cycles));
    EXPECT_EQ(lastError("good"), "up");
    const ProviderHistoryProjection good = serviceHistoryOnDisk("good-service");
    ASSERT_EQ(good.recentChecks.size(), cycles);
    EXPECT_EQ(good.recentChecks.back().state, ProviderState::operational);
    const ProviderHistoryProjection hung = serviceHistoryOnDisk("hang-service");
    ASSERT_EQ(hung.recentChecks.size(), cycles);
    for (const ProviderCheckRecord& record : hung.recentChecks)
        EXPECT_EQ(record.error, "Private or reserved network destination blocked: hang-service.example.com: " +
                                    std::string(didNotReturn));
    EXPECT_EQ(resolver.abandonedCount(), 1U);
}

TEST_F(HangingNames, sixteenOfThemLetEveryCycleEndAndOneThatReturnsLetsOthersBeAskedAgain) {
    SiteConfiguration configuration = configurationOf({});
    for (int number = 1; number <= 16; ++number)
        configuration.sites.push_back(siteNamed("hang-" + std::to_string(number)));
    configuration.sites.push_back(siteNamed("good"));
    hanging = 16;
    loadChecked(configuration);
    model->startMonitoring();
    goOn();
    pass(seconds(8 * 30));
    EXPECT_FALSE(model->isChecking()) << "two at a time, thirty seconds each";
    EXPECT_EQ(resolver.abandonedCount(), 16U);

    pass(minutes(5));
    EXPECT_EQ(lookups.waiting(), 16U);
    for (const SiteDefinition& site : configuration.sites) {
        EXPECT_EQ(checksOfSite(site.id), 2) << site.id;
        EXPECT_EQ(lastError(site.id), didNotReturn) << site.id;
    }

    letReturn(1);
    pass(minutes(5));
    EXPECT_EQ(lastError("hang-16"), "up");
    EXPECT_EQ(lastError("good"), "up");
    EXPECT_EQ(lastError("hang-15"), didNotReturn);
}

TEST_F(HangingNames, endWithTheProgramAtOnce) {
    hanging = 2;
    loadChecked(configurationOf({"hang-1", "hang-2", "good"}));
    model->startMonitoring();
    goOn();
    pass(seconds(10));
    model->shutdown();
    programEnds.request_stop();
    goOn();
    EXPECT_EQ(clock.timerCount(), 0U) << "somebody still waits";
    EXPECT_EQ(resolver.abandonedCount(), 2U);
    EXPECT_EQ(lookups.waiting(), 2U) << "what is stuck ends with the process";
    EXPECT_EQ(checksOfSite("good"), 0);
}

} // namespace
} // namespace kestrin
