#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

using std::chrono::hours;
using std::chrono::seconds;

// Each of these brings the model into one phase and takes it away there; the harness sees to it that every task
// ends and that nothing is left waiting.

class ModelLifetime : public MonitorTest {
protected:
    void loadEverything() {
        SiteConfiguration configuration = configurationOf({"a", "b"});
        configuration.providerStatus.enabled = true;
        load(configuration);
    }

    void expectNothingMoreHappens() {
        const std::size_t before = checks.siteCalls.size();
        const std::size_t written = writer.appended.size();
        settle();
        for (const auto& call : checks.siteCalls)
            call->answer.give(checksOf(call->definitions));
        for (const auto& call : checks.serviceCalls)
            call->answer.give(serviceChecksOf(call->definitions));
        notifications.answerEverything();
        settle();
        advance(hours(24));
        EXPECT_EQ(checks.siteCalls.size(), before);
        EXPECT_EQ(writer.appended.size(), written);
        EXPECT_EQ(clock.timerCount(), 0U);
        EXPECT_EQ(checks.inFlight(), 0U);
    }
};

TEST_F(ModelLifetime, mayEndBeforeTheFirstLoadHasBegun) {
    create();
    model.reset();
    expectNothingMoreHappens();
    EXPECT_TRUE(notifications.refreshCalls.empty());
}

TEST_F(ModelLifetime, mayEndWhileALoadReads) {
    writeSites(configurationOf({"a"}));
    create();
    main.runUntilIdle();
    model.reset();
    expectNothingMoreHappens();
    EXPECT_EQ(customProviders->loads, 0) << "the load was told to stop";
    EXPECT_TRUE(notifications.refreshCalls.empty());
}

TEST_F(ModelLifetime, mayEndWhileALoadWaitsForNotifications) {
    notifications.holdsRefresh = true;
    loadEverything();
    model.reset();
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, mayEndWhileAComparisonReads) {
    loadEverything();
    model->refreshIfStateChanged();
    main.runUntilIdle();
    model.reset();
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, mayEndBeforeTheLoopHasBegun) {
    loadEverything();
    model->startMonitoring();
    model.reset();
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, mayEndWhileTheLoopWaitsForALoad) {
    create();
    model->startMonitoring();
    model->checkNow();
    main.runUntilIdle();
    model.reset();
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, mayEndWhileChecksAreInFlight) {
    loadEverything();
    model->startMonitoring();
    settle();
    model.reset();
    EXPECT_TRUE(checks.siteCalls.at(0)->isCancelled());
    EXPECT_TRUE(checks.serviceCalls.at(0)->isCancelled());
    expectNothingMoreHappens();
    EXPECT_TRUE(writer.appended.empty());
}

TEST_F(ModelLifetime, mayEndWhileCheckNowIsInFlight) {
    loadEverything();
    model->checkNow();
    settle();
    model.reset();
    expectNothingMoreHappens();
    EXPECT_TRUE(writer.appended.empty());
}

TEST_F(ModelLifetime, mayEndWhenTheResultsAreInButNotTaken) {
    loadEverything();
    model->startMonitoring();
    settle();
    checks.siteCalls.at(0)->answer.give({checkOf("a")});
    checks.serviceCalls.at(0)->answer.give({});
    model.reset();
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, mayEndWhileNotificationsObserve) {
    notifications.holdsObserve = true;
    loadEverything();
    model->startMonitoring();
    settle();
    answerChecks();
    ASSERT_EQ(notifications.observeCalls.size(), 1U);
    model.reset();
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, mayEndWhileTheLoopSleepsWhichEndsTheSleep) {
    answerChecksAtOnce();
    loadEverything();
    model->startMonitoring();
    settle();
    ASSERT_EQ(clock.timerCount(), 1U);
    model.reset();
    settle();
    EXPECT_EQ(clock.timerCount(), 0U);
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, mayEndWhileARestartedLoopWaitsForTheOldOne) {
    loadEverything();
    model->startMonitoring();
    settle();
    model->checkNow();
    model->restartMonitoring();
    model->restartMonitoring();
    main.runUntilIdle();
    model.reset();
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, mayEndWhileManyStoppedCyclesAreStillInFlight) {
    loadEverything();
    for (int round = 0; round < 5; ++round) {
        model->startMonitoring();
        settle();
        model->stopMonitoring();
    }
    EXPECT_EQ(checks.siteCalls.size(), 5U);
    model.reset();
    expectNothingMoreHappens();
}

TEST_F(ModelLifetime, makesItsLeaseInvalidAtItsEnd) {
    loadEverything();
    const auto lease = model->notificationInputs().lease;
    model.reset();
    EXPECT_FALSE(lease->isValid());
}

// The program ends.

class Shutdown : public ModelLifetime {};

TEST_F(Shutdown, stopsEverythingAtOnce) {
    loadEverything();
    model->startMonitoring();
    settle();
    model->reload();
    const auto lease = model->notificationInputs().lease;
    model->shutdown();
    EXPECT_FALSE(model->isMonitoring());
    EXPECT_FALSE(model->isChecking());
    EXPECT_FALSE(model->isLoading());
    EXPECT_FALSE(lease->isValid());
    expectNothingMoreHappens();
    EXPECT_TRUE(writer.appended.empty());
}

TEST_F(Shutdown, duringALoadAppliesNothing) {
    writeSites(configurationOf({"a"}));
    create();
    main.runUntilIdle();
    model->shutdown();
    expectNothingMoreHappens();
    EXPECT_TRUE(model->snapshots().empty());
    EXPECT_EQ(model->lastLoadedAt(), std::nullopt);
    EXPECT_FALSE(model->isLoading());
}

TEST_F(Shutdown, whileNotificationsAreBroughtInLineDropsTheirAnswer) {
    notifications.holdsRefresh = true;
    notifications.state = FakeNotifications::stateNamed("late");
    loadEverything();
    model->shutdown();
    expectNothingMoreHappens();
    EXPECT_EQ(model->notificationState(), NotificationManagementState());
    EXPECT_FALSE(model->isLoading());
}

TEST_F(Shutdown, endsASleepingLoop) {
    answerChecksAtOnce();
    loadEverything();
    model->startMonitoring();
    settle();
    model->shutdown();
    expectNothingMoreHappens();
}

TEST_F(Shutdown, leavesTheErrorAlone) {
    loadEverything();
    model->checkNow();
    settle();
    writer.failAppend(1, "Disk gone");
    answerChecks();
    model->shutdown();
    EXPECT_TRUE(model->operationError().has_value());
    advance(seconds(1));
}

} // namespace
} // namespace kestrin
