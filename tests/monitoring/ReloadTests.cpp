#include "monitoring/MonitorHarness.h"

#include "services/CustomProviderStore.h"

#include <fstream>

namespace kestrin {
namespace {

using std::chrono::seconds;

class Reload : public MonitorTest {
protected:
    static SiteConfiguration withServices(std::vector<std::string> siteIDs, std::vector<std::string> serviceIDs) {
        SiteConfiguration configuration = configurationOf(siteIDs);
        configuration.providerStatus = {.enabled = true, .providerIDs = std::move(serviceIDs)};
        return configuration;
    }

    /// A model that shows all there is to show.
    void loadEverything() {
        SiteConfiguration configuration = withServices({"a", "b"}, {"openai", "claude"});
        configuration.intervalSeconds = 900;
        configuration.activeSiteID = "b";
        configuration.sites[0].url = "http://a.example.com/";
        customProviders->loadFailure = "The file is damaged.";
        load(configuration);
        ASSERT_TRUE(model->customProviderIssue().has_value());
        ASSERT_TRUE(model->configurationIssue().has_value());
    }

    void expectNothingShown() const {
        EXPECT_TRUE(model->snapshots().empty());
        EXPECT_TRUE(model->visibleSnapshots().empty());
        EXPECT_EQ(model->selectedSnapshot(), nullptr);
        EXPECT_TRUE(model->providerSnapshots().empty());
        EXPECT_EQ(model->selectedSiteID(), "");
        EXPECT_EQ(model->selectedProviderID(), "");
        EXPECT_FALSE(model->providerStatusEnabled());
        EXPECT_EQ(model->customProviderIssue(), std::nullopt);
        EXPECT_EQ(model->configurationIssue(), std::nullopt);
        EXPECT_EQ(model->intervalSeconds(), 300);
    }
};

TEST_F(Reload, runsFromConstructionOn) {
    create();
    EXPECT_TRUE(model->isLoading());
    EXPECT_FALSE(model->isMonitoring());
    EXPECT_FALSE(model->isChecking());
    EXPECT_EQ(model->intervalSeconds(), 300);
    EXPECT_EQ(model->monitorPage(), MonitorPage::sites);
    EXPECT_EQ(model->configuration(), std::nullopt);
    EXPECT_EQ(model->lastLoadedAt(), std::nullopt);
    EXPECT_EQ(model->notificationState(), NotificationManagementState());
    settle();
    EXPECT_FALSE(model->isLoading());
}

TEST_F(Reload, withNoSitesAndNoFileIsAFirstRun) {
    load();
    EXPECT_TRUE(model->isFirstRun());
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_EQ(model->configuration(), SiteConfiguration());
    expectNothingShown();
}

TEST_F(Reload, ofAFileThatHoldsNoSitesIsNoFirstRun) {
    load(configurationOf({}));
    EXPECT_FALSE(model->isFirstRun());
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_TRUE(model->configuration().has_value());
    EXPECT_EQ(model->selectedSiteID(), "");
}

TEST_F(Reload, takesOverAConfigurationFieldByField) {
    loadEverything();
    EXPECT_EQ(model->configuration()->activeSiteID, "b");
    EXPECT_EQ(model->snapshots().size(), 2U);
    EXPECT_EQ(model->visibleSnapshots().size(), 2U);
    EXPECT_EQ(model->providerSnapshots().size(), 2U);
    EXPECT_TRUE(model->providerStatusEnabled());
    EXPECT_EQ(model->intervalSeconds(), 900);
    EXPECT_EQ(model->selectedSiteID(), "b");
    EXPECT_EQ(model->selectedProviderID(), "openai");
    EXPECT_EQ(model->customProviderIssue(), "Could not read additional status services: The file is damaged.");
    EXPECT_EQ(model->configurationIssue(),
        "“Site a” needs a public HTTPS URL. Open Settings to update it before monitoring.");
    EXPECT_FALSE(model->isFirstRun());
    EXPECT_EQ(model->loadError(), std::nullopt);
}

TEST_F(Reload, thatFindsNoConfigurationAnyMoreEmptiesEverything) {
    loadEverything();
    removeSites();
    model->reload();
    settle();
    EXPECT_TRUE(model->isFirstRun());
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_EQ(model->configuration(), SiteConfiguration());
    expectNothingShown();
}

TEST_F(Reload, thatFailsEmptiesEverythingAndSaysWhy) {
    loadEverything();
    (void)files.appendCheck(checkOf("a"));
    removeSites();
    model->reload();
    settle();
    EXPECT_FALSE(model->isFirstRun());
    EXPECT_EQ(model->loadError(), "Kestrin's state directory contains data but is missing sites.json.");
    EXPECT_EQ(model->configuration(), std::nullopt);
    expectNothingShown();
    model->startMonitoring();
    settle();
    EXPECT_TRUE(checks.siteCalls.empty());
}

TEST_F(Reload, recoversFromAnEarlierFailure) {
    writeSitesText("nonsense");
    load();
    ASSERT_TRUE(model->loadError().has_value());
    writeSites(configurationOf({"a"}));
    model->reload();
    settle();
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_EQ(model->snapshots().size(), 1U);
}

TEST_F(Reload, showsTheErrorWhenTheConfigurationMovedDuringBothAttempts) {
    writeSites(configurationOf({"a"}));
    customProviders->onLoad = [&] { writeSites(configurationOf({"a"})); };
    load();
    EXPECT_EQ(model->loadError(), "Kestrin's configuration changed while it was being read.");
    customProviders->onLoad = nullptr;
    model->reload();
    settle();
    EXPECT_EQ(model->loadError(), std::nullopt);
}

TEST_F(Reload, raisesAnIntervalOfThirtyToSixty) {
    SiteConfiguration hasty = configurationOf({"a"});
    hasty.intervalSeconds = 30;
    load(hasty);
    EXPECT_EQ(model->intervalSeconds(), 60);
    EXPECT_EQ(model->configuration()->intervalSeconds, 30) << "the configuration itself is not touched";
}

TEST_F(Reload, hasNoUpperBoundForTheInterval) {
    SiteConfiguration patient = configurationOf({"a"});
    patient.intervalSeconds = 1'000'000'000;
    load(patient);
    EXPECT_EQ(model->intervalSeconds(), 1'000'000'000);
}

TEST_F(Reload, namesTheFirstEnabledSiteWithoutAPublicHTTPSURL) {
    SiteConfiguration configuration = configurationOf({"a", "b", "c"});
    configuration.sites[0].url = "http://a.example.com/";
    configuration.sites[0].enabled = false;
    configuration.sites[1].url = "https://user@b.example.com/";
    configuration.sites[2].url = "";
    load(configuration);
    EXPECT_EQ(model->configurationIssue(),
        "“Site b” needs a public HTTPS URL. Open Settings to update it before monitoring.");
}

TEST_F(Reload, duringAReloadAppliesOnlyTheLaterResult) {
    writeSites(configurationOf({"old"}));
    create();
    main.runUntilIdle();
    writeSites(configurationOf({"new"}));
    model->reload();
    main.runUntilIdle();
    ASSERT_EQ(loads.waiting(), 2U);
    // The later one ends first and is shown.
    loads.finish(1);
    main.runUntilIdle();
    EXPECT_FALSE(model->isLoading());
    EXPECT_EQ(model->snapshots().at(0).site.id, "new");
    settle();
    EXPECT_EQ(model->snapshots().at(0).site.id, "new");
    EXPECT_EQ(notifications.refreshCalls.size(), 1U);
}

TEST_F(Reload, duringAReloadStaysLoadingUntilTheLaterOneEnds) {
    writeSites(configurationOf({"a"}));
    create();
    main.runUntilIdle();
    model->reload();
    main.runUntilIdle();
    loads.finish(0);
    main.runUntilIdle();
    EXPECT_TRUE(model->isLoading());
    EXPECT_TRUE(model->snapshots().empty());
    EXPECT_EQ(model->loadError(), std::nullopt) << "the cancelled load is never shown";
    settle();
    EXPECT_FALSE(model->isLoading());
    EXPECT_EQ(model->snapshots().size(), 1U);
}

TEST_F(Reload, thatIsSupersededStopsReading) {
    writeSites(configurationOf({"a"}));
    create();
    main.runUntilIdle();
    model->reload();
    loads.finish(0);
    EXPECT_EQ(customProviders->loads, 0);
    settle();
    EXPECT_EQ(customProviders->loads, 1);
}

TEST_F(Reload, bringsNotificationsInLineBeforeLoadingCountsAsFinished) {
    notifications.holdsRefresh = true;
    SiteConfiguration configuration = configurationOf({"a"});
    load(configuration);
    EXPECT_TRUE(model->isLoading());
    EXPECT_EQ(model->snapshots().size(), 1U) << "what was loaded shows already";
    ASSERT_EQ(notifications.refreshCalls.size(), 1U);
    EXPECT_EQ(notifications.refreshCalls[0]->inputs.contexts.at(0).key.id, "a");
    EXPECT_TRUE(notifications.refreshCalls[0]->leaseWasValid);
    model->checkNow();
    settle();
    EXPECT_TRUE(checks.siteCalls.empty());
    notifications.refreshCalls[0]->answer.give(FakeNotifications::stateNamed("ready"));
    settle();
    EXPECT_FALSE(model->isLoading());
    EXPECT_EQ(model->notificationState(), FakeNotifications::stateNamed("ready"));
    EXPECT_EQ(checks.siteCalls.size(), 1U);
}

TEST_F(Reload, dropsTheAnswerOfNotificationsWhenAnotherBeganMeanwhile) {
    notifications.holdsRefresh = true;
    load(configurationOf({"a"}));
    model->reload();
    settle();
    ASSERT_EQ(notifications.refreshCalls.size(), 2U);
    notifications.refreshCalls[0]->answer.give(FakeNotifications::stateNamed("first"));
    settle();
    EXPECT_TRUE(model->isLoading());
    EXPECT_EQ(model->notificationState(), NotificationManagementState());
    notifications.refreshCalls[1]->answer.give(FakeNotifications::stateNamed("second"));
    settle();
    EXPECT_FALSE(model->isLoading());
    EXPECT_EQ(model->notificationState(), FakeNotifications::stateNamed("second"));
}

TEST_F(Reload, tellsNotificationsOfAFailureWithAnEmptyListAndNothingToRelyOn) {
    writeSitesText("nonsense");
    load();
    const NotificationInputs& inputs = notifications.refreshCalls.at(0)->inputs;
    EXPECT_TRUE(inputs.contexts.empty());
    EXPECT_EQ(inputs.policy, NotificationTargetPolicy());
    ASSERT_TRUE(inputs.lease);
}

TEST_F(Reload, makesTheOldLeaseInvalidAtOnceAndGivesOutANewOne) {
    load(configurationOf({"a"}));
    const auto before = model->notificationInputs().lease;
    EXPECT_TRUE(before->isValid());
    model->reload();
    EXPECT_FALSE(before->isValid());
    const auto after = model->notificationInputs().lease;
    EXPECT_NE(after, before);
    EXPECT_TRUE(after->isValid());
}

TEST_F(Reload, remembersWhenItsResultWasApplied) {
    load(configurationOf({"a"}));
    const auto first = model->lastLoadedAt();
    ASSERT_TRUE(first.has_value());
    clock.advance(seconds(5));
    model->reload();
    EXPECT_EQ(model->lastLoadedAt(), first);
    settle();
    EXPECT_EQ(*model->lastLoadedAt() - *first, seconds(5));
    writeSitesText("nonsense");
    clock.advance(seconds(5));
    model->reload();
    settle();
    EXPECT_EQ(*model->lastLoadedAt() - *first, seconds(10)) << "a failure is a result too";
}

TEST_F(Reload, leavesMonitoringPageAndErrorAlone) {
    load(configurationOf({"a"}));
    model->setMonitorPage(MonitorPage::providers);
    model->checkNow();
    settle();
    writer.failAppend(1, "Disk gone");
    answerChecks();
    model->startMonitoring();
    settle();
    answerChecks();
    writer.saveFailure = "Disk gone";
    model->selectSite("a");
    model->reload();
    settle();
    EXPECT_TRUE(model->isMonitoring());
    EXPECT_EQ(model->monitorPage(), MonitorPage::providers);
    EXPECT_EQ(model->operationError(), "Could not remember the selected website: Disk gone");
}

TEST_F(Reload, readsTheHistoryThatIsOnDisk) {
    writeSites(configurationOf({"a"}));
    (void)files.appendCheck(checkOf("a", false));
    load();
    EXPECT_EQ(snapshot("a").history, historyOnDisk("a"));
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 1);
}

TEST_F(Reload, goesOnWithWebsitesWhenTheFileOfAddedServicesCannotBeUsed) {
    SiteConfiguration configuration = withServices({"a"}, {"openai"});
    writeSites(configuration);
    std::ofstream(root / "custom-providers.json") << "{\"schema_version\": 3, \"providers\": []}\n";
    AppModel::Collaborators withFile = collaborators();
    withFile.customProviderStore = std::make_shared<CustomProviderStore>(root);
    model = std::make_unique<AppModel>(std::move(withFile));
    settle();
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_EQ(model->customProviderIssue(),
        "Could not read additional status services: This status-service format needs a newer Kestrin version.");
    EXPECT_EQ(model->providerSnapshots().size(), 1U);
    EXPECT_FALSE(model->notificationInputs().policy.targetsAreReadable);
    model->startMonitoring();
    settle();
    answerChecks();
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 1);
    const std::size_t loadsUntilThen = notifications.refreshCalls.size();
    model->refreshIfStateChanged();
    settle();
    EXPECT_EQ(notifications.refreshCalls.size(), loadsUntilThen)
        << "a file that cannot be used is still a known revision";
}

TEST_F(Reload, thatItsPoolDropsEndsAsOneThatWasStopped) {
    writeSites(configurationOf({"a"}));
    create();
    main.runUntilIdle();
    loads.dropAll();
    settle();
    EXPECT_FALSE(model->isLoading());
    EXPECT_EQ(model->loadError(), "Kestrin stopped loading monitor data.");
}

TEST_F(Reload, announcesWhatChanged) {
    writeSites(configurationOf({"a"}));
    create();
    int announcements = 0;
    const auto listening = model->onChange([&] { ++announcements; });
    settle();
    EXPECT_GE(announcements, 2) << "the result, and the end of loading";
}

} // namespace
} // namespace kestrin
