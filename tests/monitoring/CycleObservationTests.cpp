#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

using std::chrono::seconds;

class CycleObservations : public MonitorTest {
protected:
    void SetUp() override {
        SiteConfiguration configuration = configurationOf({"a", "b"});
        configuration.providerStatus = {.enabled = true, .providerIDs = {"openai"}};
        load(configuration);
    }

    void runCycle() {
        model->startMonitoring();
        settle();
        answerChecks();
    }
};

TEST_F(CycleObservations, areFilledFromTheRecords) {
    model->startMonitoring();
    settle();
    checks.siteCalls.at(0)->answer.give({checkOf("a", true, 5), checkOf("b", false, 6)});
    checks.serviceCalls.at(0)->answer.give({serviceCheckOf("openai", ProviderState::outage, 7)});
    settle();
    ASSERT_EQ(notifications.observeCalls.size(), 1U);
    const std::vector<NotificationObservation> expected = {
        {.target = {NotificationTargetKind::website, "a"},
            .recordID = "a-2026-01-01T00:00:05Z",
            .timestamp = "2026-01-01T00:00:05Z",
            .outcome = WebsiteOutcome{true}},
        {.target = {NotificationTargetKind::website, "b"},
            .recordID = "b-2026-01-01T00:00:06Z",
            .timestamp = "2026-01-01T00:00:06Z",
            .outcome = WebsiteOutcome{false}},
        {.target = {NotificationTargetKind::provider, "openai"},
            .recordID = "openai-2026-01-01T00:00:07Z",
            .timestamp = "2026-01-01T00:00:07Z",
            .outcome = ProviderOutcome{ProviderState::outage}},
    };
    EXPECT_EQ(notifications.observeCalls[0]->observations, expected);
}

TEST_F(CycleObservations, comeWithInputsThatAlreadyKnowTheNewResults) {
    model->startMonitoring();
    settle();
    checks.siteCalls.at(0)->answer.give({checkOf("a", true), checkOf("b", false)});
    checks.serviceCalls.at(0)->answer.give({serviceCheckOf("openai", ProviderState::degraded)});
    settle();
    const NotificationInputs& inputs = notifications.observeCalls.at(0)->inputs;
    ASSERT_EQ(inputs.contexts.size(), 3U);
    EXPECT_EQ(inputs.contexts[0].currentOutcome, NotificationObservationOutcome(WebsiteOutcome{true}));
    EXPECT_EQ(inputs.contexts[1].currentOutcome, NotificationObservationOutcome(WebsiteOutcome{false}));
    EXPECT_EQ(inputs.contexts[2].currentOutcome,
        NotificationObservationOutcome(ProviderOutcome{ProviderState::degraded}));
    EXPECT_TRUE(notifications.observeCalls[0]->leaseWasValid);
}

TEST_F(CycleObservations, ofOneTimeStampHaveOneRecordID) {
    model->startMonitoring();
    settle();
    checks.siteCalls.at(0)->answer.give({checkOf("a", true, 9), checkOf("a", false, 9)});
    checks.serviceCalls.at(0)->answer.give({});
    settle();
    const auto& observations = notifications.observeCalls.at(0)->observations;
    ASSERT_EQ(observations.size(), 2U);
    EXPECT_EQ(observations[0].recordID, observations[1].recordID);
    EXPECT_EQ(historyOnDisk("a").totalCheckCount, 2) << "both stand in the history";
}

TEST_F(CycleObservations, areMadeByTheStartedTheScheduledAndTheRestartedCycle) {
    runCycle();
    EXPECT_EQ(notifications.observeCalls.size(), 1U);
    advance(seconds(300));
    answerChecks();
    EXPECT_EQ(notifications.observeCalls.size(), 2U);
    model->restartMonitoring();
    settle();
    answerChecks();
    EXPECT_EQ(notifications.observeCalls.size(), 3U);
}

TEST_F(CycleObservations, areNeverMadeByCheckNowWhateverItFinds) {
    model->checkNow();
    settle();
    checks.siteCalls.at(0)->answer.give({checkOf("a", false), checkOf("b", false)});
    checks.serviceCalls.at(0)->answer.give({serviceCheckOf("openai", ProviderState::outage)});
    settle();
    EXPECT_EQ(writer.appended.size(), 3U);
    EXPECT_FALSE(snapshot("a").history.recentChecks.back().up);
    EXPECT_TRUE(notifications.observeCalls.empty());
}

TEST_F(CycleObservations, areNotSentWhenNoRecordCame) {
    model->startMonitoring();
    settle();
    checks.siteCalls.at(0)->answer.give({});
    checks.serviceCalls.at(0)->answer.give({});
    settle();
    EXPECT_TRUE(notifications.observeCalls.empty());
    EXPECT_FALSE(model->isChecking());
}

TEST_F(CycleObservations, keepTheCycleInFlightUntilTheyAreAnswered) {
    notifications.holdsObserve = true;
    runCycle();
    EXPECT_EQ(writer.appended.size(), 3U);
    EXPECT_TRUE(model->isChecking());
    EXPECT_EQ(clock.timerCount(), 0U) << "the interval has not begun";
    notifications.observeCalls.at(0)->answer.give(FakeNotifications::stateNamed("answer"));
    settle();
    EXPECT_FALSE(model->isChecking());
    EXPECT_EQ(model->notificationState(), FakeNotifications::stateNamed("answer"));
    EXPECT_EQ(clock.timerCount(), 1U);
}

TEST_F(CycleObservations, haveTheirAnswerDroppedAfterAReload) {
    notifications.holdsObserve = true;
    runCycle();
    notifications.state = FakeNotifications::stateNamed("reloaded");
    model->reload();
    settle();
    ASSERT_EQ(model->notificationState(), FakeNotifications::stateNamed("reloaded"));
    notifications.observeCalls.at(0)->answer.give(FakeNotifications::stateNamed("late"));
    settle();
    EXPECT_EQ(model->notificationState(), FakeNotifications::stateNamed("reloaded"));
    EXPECT_FALSE(model->isChecking());
}

TEST_F(CycleObservations, haveTheirAnswerDroppedAfterAShutdown) {
    notifications.holdsObserve = true;
    runCycle();
    const NotificationManagementState before = model->notificationState();
    model->shutdown();
    notifications.observeCalls.at(0)->answer.give(FakeNotifications::stateNamed("late"));
    settle();
    EXPECT_EQ(model->notificationState(), before);
}

TEST_F(CycleObservations, haveTheirAnswerShownThoughMonitoringWasStoppedMeanwhile) {
    notifications.holdsObserve = true;
    runCycle();
    model->stopMonitoring();
    notifications.observeCalls.at(0)->answer.give(FakeNotifications::stateNamed("late"));
    settle();
    EXPECT_EQ(model->notificationState(), FakeNotifications::stateNamed("late"));
    EXPECT_FALSE(model->isChecking());
}

TEST_F(CycleObservations, thatAreAnsweredAfterStopAndStartLeaveTheMarkOfTheNewCycle) {
    notifications.holdsObserve = true;
    runCycle();
    model->stopMonitoring();
    model->startMonitoring();
    settle();
    ASSERT_TRUE(model->isChecking());
    notifications.observeCalls.at(0)->answer.give({});
    settle();
    EXPECT_TRUE(model->isChecking());
}

} // namespace
} // namespace kestrin
