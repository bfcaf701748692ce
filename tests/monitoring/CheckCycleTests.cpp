#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

using std::chrono::seconds;
using Words = std::vector<std::string>;

/// "website a 2026-..." without its time stamp.
Words targetsOf(const std::vector<std::string>& appended) {
    Words targets;
    for (const std::string& line : appended)
        targets.push_back(line.substr(0, line.rfind(' ')));
    return targets;
}

class CheckCycle : public MonitorTest {
protected:
    void loadWithServices(const std::vector<std::string>& siteIDs, const Words& serviceIDs) {
        SiteConfiguration configuration = configurationOf(siteIDs);
        configuration.providerStatus = {.enabled = true, .providerIDs = serviceIDs};
        load(configuration);
    }

    void start() {
        model->startMonitoring();
        settle();
    }
};

TEST_F(CheckCycle, leavesOutDisabledWebsites) {
    SiteConfiguration configuration = configurationOf({"a", "b", "c"});
    configuration.sites[1].enabled = false;
    load(configuration);
    start();
    EXPECT_EQ(idsOf(checks.siteCalls.at(0)->definitions), (Words{"a", "c"}));
}

TEST_F(CheckCycle, leavesOutAnEnabledSiteWithAnInvalidURLWhichTheIssueNames) {
    SiteConfiguration configuration = configurationOf({"a", "b", "c"});
    configuration.sites[1].url = "http://b.example.com/";
    configuration.sites[2].url = "https://192.168.0.1/";
    load(configuration);
    start();
    EXPECT_EQ(idsOf(checks.siteCalls.at(0)->definitions), (Words{"a"}));
    EXPECT_EQ(model->configurationIssue(),
        "“Site b” needs a public HTTPS URL. Open Settings to update it before monitoring.");
    EXPECT_EQ(model->operationError(), std::nullopt);
}

TEST_F(CheckCycle, doesNotBeginWhenEveryWebsiteIsUnfitAndServicesAreOff) {
    SiteConfiguration configuration = configurationOf({"a"});
    configuration.sites[0].url = "https://localhost/";
    load(configuration);
    start();
    EXPECT_TRUE(checks.siteCalls.empty());
    EXPECT_FALSE(model->isChecking());
}

TEST_F(CheckCycle, checksServicesInTheOrderOfTheirSnapshots) {
    loadWithServices({}, {"claude", "openai"});
    start();
    ASSERT_EQ(model->providerSnapshots().size(), 2U);
    EXPECT_EQ(idsOf(checks.serviceCalls.at(0)->definitions), (Words{"openai", "claude"}));
    EXPECT_TRUE(model->isChecking()) << "services alone make a cycle";
}

TEST_F(CheckCycle, checksNoServicesWhileTheyAreOff) {
    load(configurationOf({"a"}));
    start();
    EXPECT_TRUE(checks.serviceCalls.at(0)->definitions.empty());
}

TEST_F(CheckCycle, startsBothKindsAtOnceAndWritesNothingUntilBothAreIn) {
    loadWithServices({"a"}, {"openai"});
    start();
    ASSERT_EQ(checks.inFlight(), 2U);
    checks.siteCalls[0]->answer.give({checkOf("a")});
    settle();
    EXPECT_TRUE(writer.appended.empty()) << "a slow service holds back the websites";
    EXPECT_TRUE(model->isChecking());
    checks.serviceCalls[0]->answer.give({serviceCheckOf("openai")});
    settle();
    EXPECT_EQ(targetsOf(writer.appended), (Words{"website a", "service openai"}));
    EXPECT_FALSE(model->isChecking());
}

TEST_F(CheckCycle, writesWebsitesInTheOrderReceivedAndThenServices) {
    loadWithServices({"a", "b", "c"}, {"openai", "claude"});
    start();
    checks.serviceCalls.at(0)->answer.give({serviceCheckOf("claude"), serviceCheckOf("openai")});
    checks.siteCalls.at(0)->answer.give({checkOf("c"), checkOf("a"), checkOf("b")});
    settle();
    EXPECT_EQ(targetsOf(writer.appended),
        (Words{"website c", "website a", "website b", "service claude", "service openai"}));
}

TEST_F(CheckCycle, showsEveryRecordAsAFreshReadOfItsFileWould) {
    loadWithServices({"a"}, {"openai"});
    for (const bool up : {true, false, false, true, false}) {
        model->checkNow();
        settle();
        checks.siteCalls.back()->answer.give({checkOf("a", up)});
        checks.serviceCalls.back()->answer.give({serviceCheckOf("openai", ProviderState::degraded)});
        settle();
        const SiteSnapshot fresh = reader.loadSiteSnapshots({siteNamed("a")}).front();
        EXPECT_EQ(snapshot("a"), fresh);
        EXPECT_EQ(model->providerSnapshots().at(0).history, serviceHistoryOnDisk("openai"));
        EXPECT_EQ(model->providerSnapshots().at(0).historyRevision,
            reader.historyRevision(HistoryKind::Provider, "openai"));
    }
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 5);
}

TEST_F(CheckCycle, showsEachRecordAsSoonAsItIsWritten) {
    load(configurationOf({"a", "b"}));
    start();
    Words shown;
    const auto listening = model->onChange([&] {
        shown.push_back(std::to_string(snapshot("a").history.totalCheckCount) +
                        std::to_string(snapshot("b").history.totalCheckCount));
    });
    answerChecks();
    EXPECT_EQ(shown.at(0), "10");
    EXPECT_EQ(shown.at(1), "11");
}

TEST_F(CheckCycle, readsNoHistoryFileAgain) {
    load(configurationOf({"a"}));
    start();
    answerChecks();
    EXPECT_EQ(customProviders->loads, 1);
    EXPECT_EQ(notifications.refreshCalls.size(), 1U);
}

// Failed appends.

TEST_F(CheckCycle, abandonsTheRestWhenAnAppendFailsAndKeepsWhatWasWritten) {
    loadWithServices({"a", "b", "c"}, {"openai"});
    start();
    writer.failAppend(2, "No space left on device");
    answerChecks();
    EXPECT_EQ(model->operationError(), "Could not save check history: No space left on device");
    EXPECT_EQ(targetsOf(writer.appended), (Words{"website a"}));
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 1);
    EXPECT_EQ(snapshot("b").history.totalCheckCount, 0);
    EXPECT_TRUE(model->providerSnapshots().at(0).history.recentChecks.empty());
    EXPECT_FALSE(model->isChecking());
    EXPECT_FALSE(model->isLoading()) << "no reload is made";
    EXPECT_EQ(notifications.refreshCalls.size(), 1U);
}

TEST_F(CheckCycle, tellsNotificationsNothingOfACycleWhoseAppendFailed) {
    loadWithServices({"a", "b"}, {"openai"});
    start();
    writer.failAppend(3, "Disk gone");
    answerChecks();
    EXPECT_EQ(targetsOf(writer.appended), (Words{"website a", "website b"}));
    EXPECT_TRUE(notifications.observeCalls.empty()) << "not even of records that were written";
    EXPECT_EQ(model->operationError(), "Could not save check history: Disk gone");
}

TEST_F(CheckCycle, keepsTheLoopGoingAfterAFailedAppendAndClearsTheErrorWhenACycleIsWrittenWhole) {
    load(configurationOf({"a"}));
    start();
    writer.failAppend(1, "Disk gone");
    answerChecks();
    ASSERT_TRUE(model->operationError().has_value());
    EXPECT_TRUE(model->isMonitoring());
    advance(seconds(300));
    ASSERT_EQ(checks.siteCalls.size(), 2U);
    EXPECT_TRUE(model->operationError().has_value()) << "a cycle that has begun clears nothing yet";
    answerChecks();
    EXPECT_EQ(model->operationError(), std::nullopt);
    EXPECT_EQ(notifications.observeCalls.size(), 1U);
}

TEST_F(CheckCycle, passesOnTheErrorOfTheRealWriter) {
    load(configurationOf({"a"}));
    start();
    std::filesystem::create_directories(root / "data" / "a.jsonl");
    answerChecks();
    ASSERT_TRUE(model->operationError().has_value());
    EXPECT_TRUE(model->operationError()->starts_with("Could not save check history: ")) << *model->operationError();
}

TEST_F(CheckCycle, leavesTheErrorAloneOnStopAndClearsItOnStart) {
    load(configurationOf({"a"}));
    start();
    writer.failAppend(1, "Disk gone");
    answerChecks();
    model->stopMonitoring();
    EXPECT_TRUE(model->operationError().has_value());
    model->startMonitoring();
    EXPECT_EQ(model->operationError(), std::nullopt);
}

TEST_F(CheckCycle, leavesAnEarlierErrorAsItStandsWhenItsResultsAreThrownAway) {
    load(configurationOf({"a"}));
    start();
    writer.failAppend(1, "Disk gone");
    answerChecks();
    advance(seconds(300));
    model->reload();
    answerChecks();
    EXPECT_EQ(model->operationError(), "Could not save check history: Disk gone");
}

// Configuration that moved.

TEST_F(CheckCycle, writesTheRecordOfASiteDeletedMeanwhileAndThenReloads) {
    load(configurationOf({"a", "b"}));
    start();
    checks.siteCalls.at(0)->answer.give({checkOf("a"), checkOf("deleted"), checkOf("b")});
    main.runUntilIdle();
    EXPECT_EQ(targetsOf(writer.appended), (Words{"website a", "website deleted"}));
    EXPECT_EQ(historyOnDisk("deleted").totalCheckCount, 1);
    EXPECT_TRUE(model->isLoading());
    EXPECT_FALSE(model->isChecking());
    EXPECT_EQ(model->operationError(), std::nullopt);
    settle();
    EXPECT_FALSE(model->isLoading());
    EXPECT_TRUE(notifications.observeCalls.empty());
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 1);
    advance(seconds(300));
    EXPECT_EQ(checks.siteCalls.size(), 2U) << "the loop goes on";
}

TEST_F(CheckCycle, leavesTheErrorAloneWhenARecordHasNoSnapshot) {
    load(configurationOf({"a"}));
    start();
    writer.failAppend(1, "Disk gone");
    answerChecks();
    advance(seconds(300));
    checks.siteCalls.at(1)->answer.give({checkOf("deleted")});
    settle();
    EXPECT_EQ(model->operationError(), "Could not save check history: Disk gone");
}

TEST_F(CheckCycle, neitherWritesTheRecordOfAServiceDeselectedMeanwhileNorReloads) {
    loadWithServices({"a"}, {"openai"});
    start();
    checks.siteCalls.at(0)->answer.give({checkOf("a")});
    checks.serviceCalls.at(0)->answer.give({serviceCheckOf("claude"), serviceCheckOf("openai")});
    settle();
    EXPECT_EQ(targetsOf(writer.appended), (Words{"website a", "service openai"}));
    EXPECT_EQ(notifications.refreshCalls.size(), 1U);
    EXPECT_EQ(notifications.observeCalls.at(0)->observations.size(), 2U);
}

TEST_F(CheckCycle, neitherWritesTheRecordOfAServiceWithoutSnapshotNorReloads) {
    loadWithServices({"a"}, {"openai", "late"});
    start();
    services->included.push_back(FakeServices::serviceNamed("late", "Late"));
    checks.siteCalls.at(0)->answer.give({checkOf("a")});
    checks.serviceCalls.at(0)->answer.give({serviceCheckOf("late")});
    settle();
    EXPECT_EQ(targetsOf(writer.appended), (Words{"website a"}));
    EXPECT_EQ(notifications.refreshCalls.size(), 1U);
    EXPECT_EQ(model->operationError(), std::nullopt);
}

TEST_F(CheckCycle, discardsEverythingAfterAReloadEvenIfNothingChanged) {
    loadWithServices({"a"}, {"openai"});
    start();
    model->reload();
    settle();
    EXPECT_TRUE(model->isChecking()) << "the cycle owns the mark until its checks have ended";
    answerChecks();
    EXPECT_TRUE(writer.appended.empty());
    EXPECT_TRUE(notifications.observeCalls.empty());
    EXPECT_FALSE(model->isChecking());
    EXPECT_TRUE(model->isMonitoring());
    advance(seconds(300));
    answerChecks();
    EXPECT_EQ(writer.appended.size(), 2U);
}

TEST_F(CheckCycle, discardsEverythingWhileTheReloadStillRuns) {
    load(configurationOf({"a"}));
    start();
    model->reload();
    checks.siteCalls.at(0)->answer.give({checkOf("a")});
    main.runUntilIdle();
    EXPECT_TRUE(writer.appended.empty());
    EXPECT_FALSE(model->isChecking());
}

// Stopping.

TEST_F(CheckCycle, dropsTheMarkAtOnceOnStopAndAppendsNothingOfWhatTheChecksReturn) {
    loadWithServices({"a"}, {"openai"});
    start();
    model->stopMonitoring();
    EXPECT_FALSE(model->isChecking());
    EXPECT_TRUE(checks.siteCalls[0]->isCancelled());
    EXPECT_TRUE(checks.serviceCalls[0]->isCancelled());
    answerChecks();
    EXPECT_TRUE(writer.appended.empty());
    EXPECT_TRUE(notifications.observeCalls.empty());
    EXPECT_FALSE(model->isChecking());
}

TEST_F(CheckCycle, thatEndsLateAfterStopAndStartLeavesTheMarkOfTheNewOne) {
    load(configurationOf({"a"}));
    start();
    model->stopMonitoring();
    start();
    ASSERT_EQ(checks.siteCalls.size(), 2U);
    EXPECT_TRUE(model->isChecking());
    checks.siteCalls[0]->answer.give({checkOf("a", false)});
    settle();
    EXPECT_TRUE(model->isChecking());
    EXPECT_TRUE(writer.appended.empty());
    checks.siteCalls[1]->answer.give({checkOf("a")});
    settle();
    EXPECT_FALSE(model->isChecking());
    EXPECT_EQ(writer.appended.size(), 1U);
    EXPECT_EQ(clock.timerCount(), 1U);
}

TEST_F(CheckCycle, thatEndsEarlyUponStopIsSilentToo) {
    checks.uponCancellation = ScriptedCheckRunner::UponCancellation::EndsEarly;
    load(configurationOf({"a"}));
    start();
    model->stopMonitoring();
    settle();
    EXPECT_EQ(checks.inFlight(), 0U);
    EXPECT_TRUE(writer.appended.empty());
    EXPECT_EQ(model->operationError(), std::nullopt);
}

TEST_F(CheckCycle, thatWakesWhileCheckNowIsInFlightLosesItsBeat) {
    load(configurationOf({"a"}));
    start();
    answerChecks();
    advance(seconds(299));
    model->checkNow();
    settle();
    ASSERT_EQ(checks.siteCalls.size(), 2U);
    advance(seconds(1));
    EXPECT_EQ(checks.siteCalls.size(), 2U) << "the beat is skipped";
    answerChecks();
    advance(seconds(299));
    EXPECT_EQ(checks.siteCalls.size(), 2U);
    advance(seconds(1));
    EXPECT_EQ(checks.siteCalls.size(), 3U) << "one whole interval after the skipped wake";
}

} // namespace
} // namespace kestrin
