#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

class RefreshingWhenTheStateChanged : public MonitorTest {
protected:
    [[nodiscard]] std::size_t reloads() const { return notifications.refreshCalls.size() - 1; }

    void refresh() {
        model->refreshIfStateChanged();
        settle();
    }

    void loadWithServices() {
        SiteConfiguration configuration = configurationOf({"a", "b"});
        configuration.providerStatus = {.enabled = true, .providerIDs = {"openai"}};
        load(configuration);
    }
};

TEST_F(RefreshingWhenTheStateChanged, doesNotReloadWhatHasNotMoved) {
    loadWithServices();
    refresh();
    EXPECT_EQ(reloads(), 0U);
    refresh();
    EXPECT_EQ(reloads(), 0U);
}

TEST_F(RefreshingWhenTheStateChanged, doesNotReloadAfterTheModelsOwnAppends) {
    loadWithServices();
    for (int round = 0; round < 2; ++round) {
        model->checkNow();
        settle();
        answerChecks();
        refresh();
        EXPECT_EQ(reloads(), 0U);
    }
}

TEST_F(RefreshingWhenTheStateChanged, doesNotReloadForLinesThatTheModelWroteDuringTheComparison) {
    loadWithServices();
    model->checkNow();
    settle();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    ASSERT_EQ(loads.waiting(), 1U) << "the comparison is about to look";
    const auto lease = model->notificationInputs().lease;
    for (const auto& call : checks.siteCalls)
        call->answer.give(checksOf(call->definitions));
    for (const auto& call : checks.serviceCalls)
        call->answer.give(serviceChecksOf(call->definitions));
    main.runUntilIdle();
    ASSERT_EQ(writer.appended.size(), 3U);
    settle();
    EXPECT_EQ(reloads(), 0U);
    EXPECT_TRUE(lease->isValid());
    refresh();
    EXPECT_EQ(reloads(), 0U);
}

TEST_F(RefreshingWhenTheStateChanged, doesNotReloadForTheChoiceThatTheModelWroteDuringTheComparison) {
    loadWithServices();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    model->selectSite("b");
    settle();
    EXPECT_EQ(reloads(), 0U);
}

TEST_F(RefreshingWhenTheStateChanged, reloadsForAForeignLineThatCameAlongWithTheModelsOwn) {
    loadWithServices();
    model->checkNow();
    settle();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    for (const auto& call : checks.siteCalls)
        call->answer.give(checksOf(call->definitions));
    for (const auto& call : checks.serviceCalls)
        call->answer.give(serviceChecksOf(call->definitions));
    main.runUntilIdle();
    (void)files.appendCheck(checkOf("b", false));
    settle();
    EXPECT_EQ(reloads(), 1U);
    EXPECT_EQ(snapshot("b").history, historyOnDisk("b"));
}

TEST_F(RefreshingWhenTheStateChanged, reloadsForAForeignLineThatCameJustBeforeTheModelsOwn) {
    loadWithServices();
    model->checkNow();
    settle();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    (void)files.appendCheck(checkOf("b", false));
    answerChecks();
    EXPECT_EQ(reloads(), 1U);
    EXPECT_EQ(snapshot("b").history, historyOnDisk("b"));
}

TEST_F(RefreshingWhenTheStateChanged, atAnyMomentOfABusyCycleNeverReloadsForTheModelsOwnLines) {
    // A cycle is due all the time, and the popover is opened after any number of steps of the main thread.
    loadWithServices();
    answerChecksAtOnce();
    for (std::size_t steps = 0; steps < 60; ++steps) {
        model->checkNow();
        for (std::size_t step = 0; step < steps % 20 && main.runOne(); ++step) {
        }
        model->refreshIfStateChanged();
        for (std::size_t step = 0; step < steps / 20 + 1 && main.runOne(); ++step) {
        }
        if (loads.waiting() > 0) loads.finish();
        model->checkNow();
        settle();
        ASSERT_EQ(reloads(), 0U) << "after " << steps << " steps";
    }
    EXPECT_GT(writer.appended.size(), 60U);
}

TEST_F(RefreshingWhenTheStateChanged, reloadsAfterAForeignEditOfSites) {
    loadWithServices();
    writeSites(configurationOf({"c"}));
    refresh();
    EXPECT_EQ(reloads(), 1U);
    EXPECT_EQ(model->snapshots().at(0).site.id, "c");
    refresh();
    EXPECT_EQ(reloads(), 1U);
}

TEST_F(RefreshingWhenTheStateChanged, reloadsAfterAForeignLineInAHistory) {
    loadWithServices();
    (void)files.appendCheck(checkOf("b", false));
    refresh();
    EXPECT_EQ(reloads(), 1U);
    EXPECT_EQ(snapshot("b").history, historyOnDisk("b"));
    (void)files.appendProviderCheck(serviceCheckOf("openai"));
    refresh();
    EXPECT_EQ(reloads(), 2U);
    EXPECT_EQ(model->providerSnapshots().at(0).history.recentChecks.size(), 1U);
}

TEST_F(RefreshingWhenTheStateChanged, reloadsWhenTheAddedServicesAreReplaced) {
    loadWithServices();
    customProviders->replace(CustomProviderConfiguration());
    refresh();
    EXPECT_EQ(reloads(), 1U);
}

TEST_F(RefreshingWhenTheStateChanged, reloadsWhenARevisionCannotBeRead) {
    loadWithServices();
    customProviders->revisionFailure = "Permission denied";
    refresh();
    EXPECT_EQ(model->loadError(), "Permission denied");
}

TEST_F(RefreshingWhenTheStateChanged, ofAFirstRunWaitsForAFile) {
    load();
    refresh();
    EXPECT_EQ(reloads(), 0U);
    writeSites(configurationOf({"a"}));
    refresh();
    EXPECT_EQ(reloads(), 1U);
    EXPECT_FALSE(model->isFirstRun());
}

TEST_F(RefreshingWhenTheStateChanged, triesAgainAfterALoadThatFailed) {
    writeSitesText("nonsense");
    load();
    refresh();
    EXPECT_EQ(reloads(), 1U) << "nothing is known of what is on disk";
}

TEST_F(RefreshingWhenTheStateChanged, triesAgainAfterALoadThatFailedWithoutAnyFileOfItsOwn) {
    std::filesystem::create_directory(root / "data");
    load();
    EXPECT_NE(model->loadError(), std::nullopt);
    std::filesystem::remove(root / "data");
    refresh();
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_TRUE(model->isFirstRun());
}

TEST_F(RefreshingWhenTheStateChanged, doesNotReloadForLinesOfAHistoryThatIsGone) {
    loadWithServices();
    (void)files.appendCheck(checkOf("b", false));
    model->checkNow();
    settle();
    answerChecks();
    for (const auto& entry : std::filesystem::directory_iterator(root))
        std::filesystem::remove_all(entry);
    refresh();
    EXPECT_TRUE(model->isFirstRun());
    const std::size_t reloadsUntilThen = reloads();
    refresh();
    refresh();
    EXPECT_EQ(reloads(), reloadsUntilThen);
}

TEST_F(RefreshingWhenTheStateChanged, doesNothingWhileALoadRuns) {
    writeSites(configurationOf({"a"}));
    create();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    EXPECT_EQ(loads.waiting(), 1U) << "the load alone";
}

TEST_F(RefreshingWhenTheStateChanged, doesNothingWhileAComparisonRuns) {
    loadWithServices();
    model->refreshIfStateChanged();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    EXPECT_EQ(loads.waiting(), 1U);
    settle();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    EXPECT_EQ(loads.waiting(), 1U) << "the next one may begin";
}

TEST_F(RefreshingWhenTheStateChanged, isSupersededByAReload) {
    loadWithServices();
    writeSites(configurationOf({"c"}));
    model->refreshIfStateChanged();
    main.runUntilIdle();
    model->reload();
    settle();
    EXPECT_EQ(reloads(), 1U) << "the cancelled comparison asks for no load of its own";
}

TEST_F(RefreshingWhenTheStateChanged, thatEndsLateAfterAReloadLeavesANewerComparisonItsPlace) {
    loadWithServices();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    model->reload();
    main.runUntilIdle();
    loads.finish(1);
    main.runUntilIdle();
    ASSERT_FALSE(model->isLoading());
    model->refreshIfStateChanged();
    main.runUntilIdle();
    ASSERT_EQ(loads.waiting(), 2U);
    loads.finish(0);
    main.runUntilIdle();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    EXPECT_EQ(loads.waiting(), 1U) << "the newer comparison still runs and is the only one";
}

TEST_F(RefreshingWhenTheStateChanged, ofTwoSnapshotsWithOneIDKnowsTheLaterRevision) {
    load(configurationOf({"a", "a"}));
    refresh();
    EXPECT_EQ(reloads(), 0U);
    // A check updates the first of the two; the file is newer than what the later one knows.
    model->checkNow();
    settle();
    checks.siteCalls.back()->answer.give({checkOf("a")});
    settle();
    EXPECT_NE(model->snapshots().at(0).historyRevision, model->snapshots().at(1).historyRevision);
    refresh();
    EXPECT_EQ(reloads(), 1U);
    EXPECT_EQ(model->snapshots().at(0).historyRevision, model->snapshots().at(1).historyRevision);
    refresh();
    EXPECT_EQ(reloads(), 1U);
}

TEST_F(RefreshingWhenTheStateChanged, doesNothingAfterAShutdownThatCameMeanwhile) {
    loadWithServices();
    writeSites(configurationOf({"c"}));
    model->refreshIfStateChanged();
    main.runUntilIdle();
    model->shutdown();
    settle();
    EXPECT_EQ(reloads(), 0U);
    EXPECT_FALSE(model->isLoading());
}

} // namespace
} // namespace kestrin
