#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

using std::chrono::seconds;

class CheckNow : public MonitorTest {
protected:
    [[nodiscard]] std::size_t cycles() const { return checks.siteCalls.size(); }

    void failAnAppend() {
        model->checkNow();
        settle();
        writer.failAppend(1, "Disk gone");
        answerChecks();
        ASSERT_TRUE(model->operationError().has_value());
    }
};

TEST_F(CheckNow, runsOneCycleWhileMonitoringIsOff) {
    load(configurationOf({"a"}));
    model->checkNow();
    settle();
    EXPECT_TRUE(model->isChecking());
    EXPECT_FALSE(model->isMonitoring());
    answerChecks();
    EXPECT_FALSE(model->isChecking());
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 1);
    advance(seconds(3600));
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(CheckNow, doesNothingWhileACycleIsInFlightAndClearsNoError) {
    load(configurationOf({"a"}));
    failAnAppend();
    model->startMonitoring();
    settle();
    ASSERT_TRUE(model->isChecking());
    // An error that arose meanwhile: the selection could not be stored.
    writer.saveFailure = "Disk gone";
    model->selectSite("a");
    ASSERT_TRUE(model->operationError().has_value());
    model->checkNow();
    settle();
    EXPECT_TRUE(model->operationError().has_value());
    EXPECT_EQ(cycles(), 2U);
}

TEST_F(CheckNow, isRefusedTheSecondTimeBeforeTheFirstHasReachedItsChecks) {
    load(configurationOf({"a"}));
    model->checkNow();
    model->checkNow();
    EXPECT_FALSE(model->isChecking());
    settle();
    answerChecks();
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(CheckNow, isRefusedTheSecondTimeAfterTheFirstHasReachedItsChecks) {
    load(configurationOf({"a"}));
    model->checkNow();
    settle();
    model->checkNow();
    settle();
    answerChecks();
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(CheckNow, canBeAskedForAgainWhenItHasEnded) {
    load(configurationOf({"a"}));
    for (std::size_t round = 1; round <= 3; ++round) {
        model->checkNow();
        settle();
        answerChecks();
        EXPECT_EQ(cycles(), round);
    }
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 3);
}

TEST_F(CheckNow, waitsForALoadAndChecksWhatItBrought) {
    writeSites(configurationOf({"a"}));
    create();
    model->checkNow();
    main.runUntilIdle();
    EXPECT_EQ(cycles(), 0U);
    settle();
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(CheckNow, isRefusedASecondTimeWhileTheFirstWaitsForALoad) {
    writeSites(configurationOf({"a"}));
    create();
    model->checkNow();
    main.runUntilIdle();
    model->checkNow();
    settle();
    answerChecks();
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(CheckNow, clearsAnEarlierError) {
    load(configurationOf({"a"}));
    failAnAppend();
    model->checkNow();
    EXPECT_EQ(model->operationError(), std::nullopt);
}

TEST_F(CheckNow, withNothingToCheckEndsWithoutShowingAndCanBeAskedForAgain) {
    load();
    model->checkNow();
    settle();
    EXPECT_FALSE(model->isChecking());
    writeSites(configurationOf({"a"}));
    model->reload();
    settle();
    model->checkNow();
    settle();
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(CheckNow, reachesHistoryAndDashboardButNeverNotificationsThoughTheSiteWentDown) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    answerChecks();
    notifications.observeCalls.clear();
    model->checkNow();
    settle();
    checks.siteCalls.back()->answer.give({checkOf("a", false)});
    settle();
    EXPECT_EQ(historyOnDisk("a").totalCheckCount, 2);
    EXPECT_EQ(snapshot("a").history, historyOnDisk("a"));
    EXPECT_TRUE(snapshot("a").history.ongoingIncidentStart.has_value());
    EXPECT_TRUE(notifications.observeCalls.empty());
}

TEST_F(CheckNow, isDroppedByStopAndCanBeAskedForAgainAtOnce) {
    load(configurationOf({"a"}));
    model->checkNow();
    settle();
    model->stopMonitoring();
    EXPECT_FALSE(model->isChecking());
    model->checkNow();
    settle();
    ASSERT_EQ(cycles(), 2U);
    checks.siteCalls[0]->answer.give({checkOf("a", false)});
    settle();
    EXPECT_TRUE(model->isChecking());
    EXPECT_TRUE(writer.appended.empty());
    checks.siteCalls[1]->answer.give({checkOf("a")});
    settle();
    EXPECT_FALSE(model->isChecking());
    EXPECT_EQ(writer.appended.size(), 1U);
}

TEST_F(CheckNow, thatEndsLateDoesNotLetAThirdInWhileTheSecondWaits) {
    load(configurationOf({"a"}));
    model->checkNow();
    settle();
    model->stopMonitoring();
    model->reload();
    model->checkNow();
    checks.siteCalls.at(0)->answer.give({});
    main.runUntilIdle();
    // The first is over, the second waits for the load and is not checking yet.
    ASSERT_TRUE(model->isLoading());
    model->checkNow();
    settle();
    ASSERT_EQ(cycles(), 2U);
    // The one in flight is still the one that a stop reaches.
    model->stopMonitoring();
    EXPECT_TRUE(checks.siteCalls[1]->isCancelled());
    answerChecks();
    EXPECT_TRUE(writer.appended.empty());
}

TEST_F(CheckNow, thatWasStoppedWhileItWaitedForALoadNeverChecks) {
    writeSites(configurationOf({"a"}));
    create();
    model->checkNow();
    main.runUntilIdle();
    model->stopMonitoring();
    settle();
    EXPECT_EQ(cycles(), 0U);
}

TEST_F(CheckNow, asksTheServicesToo) {
    SiteConfiguration configuration = configurationOf({});
    configuration.providerStatus = {.enabled = true, .providerIDs = {"claude"}};
    load(configuration);
    model->checkNow();
    settle();
    EXPECT_TRUE(model->isChecking());
    answerChecks();
    EXPECT_EQ(model->providerSnapshots().at(0).history.recentChecks.size(), 1U);
}

TEST_F(CheckNow, afterALoadThatFailedLoadsAgainFirst) {
    answerChecksAtOnce();
    writeSitesText("nonsense");
    load();
    writeSites(configurationOf({"a"}));
    model->checkNow();
    settle();
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_EQ(writer.appended.size(), 1U);
}

} // namespace
} // namespace kestrin
