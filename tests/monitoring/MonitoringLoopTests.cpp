#include "monitoring/MonitorHarness.h"

#include <cstdint>
#include <limits>

namespace kestrin {
namespace {

using std::chrono::hours;
using std::chrono::seconds;

class TheMonitoringLoop : public MonitorTest {
protected:
    [[nodiscard]] std::size_t cycles() const { return checks.siteCalls.size(); }
};

TEST_F(TheMonitoringLoop, isNotRunningAfterConstruction) {
    load(configurationOf({"a"}));
    advance(hours(24));
    EXPECT_FALSE(model->isMonitoring());
    EXPECT_EQ(cycles(), 0U);
}

TEST_F(TheMonitoringLoop, checksAtOnceOnStart) {
    load(configurationOf({"a", "b"}));
    model->startMonitoring();
    EXPECT_TRUE(model->isMonitoring());
    EXPECT_FALSE(model->isChecking());
    settle();
    ASSERT_EQ(cycles(), 1U);
    EXPECT_EQ(idsOf(checks.siteCalls[0]->definitions), (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(model->isChecking());
}

TEST_F(TheMonitoringLoop, waitsForTheFirstLoadBeforeTheFirstCheck) {
    writeSites(configurationOf({"a"}));
    create();
    model->startMonitoring();
    main.runUntilIdle();
    EXPECT_TRUE(model->isLoading());
    EXPECT_EQ(cycles(), 0U);
    settle();
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(TheMonitoringLoop, waitsForEveryLoadThatBeganMeanwhile) {
    writeSites(configurationOf({"a"}));
    create();
    model->startMonitoring();
    main.runUntilIdle();
    model->reload();
    main.runUntilIdle();
    loads.finish(0);
    main.runUntilIdle();
    EXPECT_EQ(cycles(), 0U);
    settle();
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(TheMonitoringLoop, runsOnceHoweverOftenItIsStarted) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    model->startMonitoring();
    settle();
    model->startMonitoring();
    answerChecks();
    EXPECT_EQ(cycles(), 1U);
    EXPECT_EQ(clock.timerCount(), 1U);
}

TEST_F(TheMonitoringLoop, countsTheIntervalFromTheEndOfACycle) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    advance(seconds(1000));
    EXPECT_EQ(cycles(), 1U) << "a cycle that overruns delays the next one";
    answerChecks();
    advance(seconds(299));
    EXPECT_EQ(cycles(), 1U);
    advance(seconds(1));
    EXPECT_EQ(cycles(), 2U);
}

TEST_F(TheMonitoringLoop, countsTimeAsleepAndCatchesNothingUp) {
    answerChecksAtOnce();
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    // One long step, as after machine sleep: the deadline passed long ago.
    advance(seconds(300 * 10 + 7));
    EXPECT_EQ(cycles(), 2U);
    advance(seconds(299));
    EXPECT_EQ(cycles(), 2U);
    advance(seconds(1));
    EXPECT_EQ(cycles(), 3U);
}

TEST_F(TheMonitoringLoop, usesAChangedIntervalFromTheNextSleepOn) {
    answerChecksAtOnce();
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    SiteConfiguration shorter = configurationOf({"a"});
    shorter.intervalSeconds = 60;
    writeSites(shorter);
    model->reload();
    settle();
    ASSERT_EQ(model->intervalSeconds(), 60);
    advance(seconds(299));
    EXPECT_EQ(cycles(), 1U) << "the sleep under way is not shortened";
    advance(seconds(1));
    EXPECT_EQ(cycles(), 2U);
    advance(seconds(60));
    EXPECT_EQ(cycles(), 3U);
}

TEST_F(TheMonitoringLoop, usesSixtySecondsForAnIntervalOfLess) {
    answerChecksAtOnce();
    SiteConfiguration hasty = configurationOf({"a"});
    hasty.intervalSeconds = 30;
    load(hasty);
    model->startMonitoring();
    settle();
    advance(seconds(59));
    EXPECT_EQ(cycles(), 1U);
    advance(seconds(1));
    EXPECT_EQ(cycles(), 2U);
}

TEST_F(TheMonitoringLoop, neverMakesABusyLoopOfAHugeInterval) {
    answerChecksAtOnce();
    SiteConfiguration patient = configurationOf({"a"});
    patient.intervalSeconds = std::numeric_limits<std::int64_t>::max();
    load(patient);
    model->startMonitoring();
    settle();
    EXPECT_EQ(clock.nextDeadline(), Instant::max());
    advance(hours(24 * 365 * 100));
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(TheMonitoringLoop, neverMakesABusyLoopOfANegativeInterval) {
    answerChecksAtOnce();
    SiteConfiguration backwards = configurationOf({"a"});
    backwards.intervalSeconds = std::numeric_limits<std::int64_t>::min();
    load(backwards);
    model->startMonitoring();
    settle();
    EXPECT_EQ(clock.nextDeadline(), clock.now() + seconds(60));
}

TEST_F(TheMonitoringLoop, loadsAgainBeforeACycleAfterALoadThatFailed) {
    answerChecksAtOnce();
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    ASSERT_EQ(writer.appended.size(), 1U);
    // Damaged for a moment, and somebody opens the dashboard just then.
    writeSitesText("nonsense");
    model->refreshIfStateChanged();
    settle();
    ASSERT_TRUE(model->loadError().has_value());
    advance(seconds(300));
    EXPECT_TRUE(model->loadError().has_value()) << "the file is still damaged";
    writeSites(configurationOf({"a"}));
    for (int wake = 0; wake < 3; ++wake)
        advance(seconds(300));
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_EQ(writer.appended.size(), 4U);
    EXPECT_TRUE(model->isMonitoring());
}

TEST_F(TheMonitoringLoop, loadsAgainBeforeACycleWhileTheAddedServicesCouldNotBeRead) {
    answerChecksAtOnce();
    customProviders->loadFailure = "Too many open files";
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    ASSERT_TRUE(model->customProviderIssue().has_value());
    customProviders->loadFailure.reset();
    advance(seconds(300));
    EXPECT_EQ(model->customProviderIssue(), std::nullopt);
    EXPECT_EQ(writer.appended.size(), 2U);
}

TEST_F(TheMonitoringLoop, loadsNothingWhileACycleIsInFlightThoughTheAddedServicesCouldNotBeRead) {
    customProviders->loadFailure = "Too many open files";
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    answerChecks();
    model->checkNow();
    settle();
    ASSERT_TRUE(model->isChecking());
    advance(seconds(300));
    EXPECT_TRUE(model->isChecking());
    answerChecks();
    EXPECT_EQ(writer.appended.size(), 2U);
}

TEST_F(TheMonitoringLoop, startedAfterALoadThatFailedLoadsAgainFirst) {
    answerChecksAtOnce();
    writeSitesText("nonsense");
    load();
    writeSites(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_EQ(writer.appended.size(), 1U);
}

TEST_F(TheMonitoringLoop, startedWithNothingToCheckGoesOnWakingAndNeverShowsAsChecking) {
    load();
    bool everChecking = false;
    const auto listening = model->onChange([&] { everChecking = everChecking || model->isChecking(); });
    model->startMonitoring();
    settle();
    EXPECT_TRUE(model->isMonitoring());
    for (int wake = 0; wake < 3; ++wake) {
        EXPECT_EQ(clock.nextDeadline(), clock.now() + seconds(300));
        advance(seconds(300));
    }
    EXPECT_FALSE(everChecking);
    EXPECT_EQ(cycles(), 0U);
    EXPECT_TRUE(model->isMonitoring());
}

TEST_F(TheMonitoringLoop, checksWhatALoadBroughtAtItsNextWake) {
    answerChecksAtOnce();
    load();
    model->startMonitoring();
    settle();
    writeSites(configurationOf({"a"}));
    model->reload();
    settle();
    EXPECT_EQ(cycles(), 0U);
    advance(seconds(300));
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(TheMonitoringLoop, goesOnAfterALoadThatFailedAndFindsNothing) {
    answerChecksAtOnce();
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    writeSitesText("{");
    model->reload();
    settle();
    ASSERT_TRUE(model->loadError().has_value());
    advance(seconds(300));
    EXPECT_EQ(cycles(), 1U);
    EXPECT_TRUE(model->isMonitoring());
    writeSites(configurationOf({"a"}));
    model->reload();
    settle();
    advance(seconds(300));
    EXPECT_EQ(cycles(), 2U);
}

TEST_F(TheMonitoringLoop, endsItsSleepAtOnceWhenStopped) {
    answerChecksAtOnce();
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    ASSERT_EQ(clock.timerCount(), 1U);
    model->stopMonitoring();
    EXPECT_FALSE(model->isMonitoring());
    settle();
    EXPECT_EQ(clock.timerCount(), 0U);
    advance(hours(1));
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(TheMonitoringLoop, stoppedBeforeItsFirstCheckNeverChecks) {
    writeSites(configurationOf({"a"}));
    create();
    model->startMonitoring();
    main.runUntilIdle();
    model->stopMonitoring();
    settle();
    EXPECT_EQ(cycles(), 0U);
}

TEST_F(TheMonitoringLoop, startedAgainWhileTheStoppedOneStillSleepsChecksAtOnce) {
    answerChecksAtOnce();
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    model->stopMonitoring();
    model->startMonitoring();
    settle();
    EXPECT_EQ(cycles(), 2U);
    EXPECT_EQ(clock.timerCount(), 1U);
}

TEST_F(TheMonitoringLoop, stoppingWhatDoesNotRunChangesNothingButIsHarmless) {
    load(configurationOf({"a"}));
    model->stopMonitoring();
    settle();
    EXPECT_FALSE(model->isMonitoring());
    EXPECT_FALSE(model->isChecking());
    EXPECT_FALSE(model->isLoading());
}

TEST_F(TheMonitoringLoop, isOffAgainAfterARelaunch) {
    answerChecksAtOnce();
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    model->shutdown();
    load();
    advance(hours(1));
    EXPECT_FALSE(model->isMonitoring());
    EXPECT_EQ(cycles(), 1U);
}

TEST_F(TheMonitoringLoop, goesOnAfterARunOfCyclesWhoseTargetsAreDown) {
    checks.siteResults = [](const std::vector<SiteDefinition>&) { return std::vector{checkOf("a", false)}; };
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    for (int beat = 0; beat < 5; ++beat)
        advance(seconds(300));
    EXPECT_EQ(cycles(), 6U);
    EXPECT_EQ(model->operationError(), std::nullopt) << "a website that is down is no failure of the cycle";
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 6);
}

} // namespace
} // namespace kestrin
