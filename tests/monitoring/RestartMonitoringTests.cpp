#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

using std::chrono::seconds;

class RestartMonitoring : public MonitorTest {
protected:
    [[nodiscard]] std::size_t cycles() const { return checks.siteCalls.size(); }
};

TEST_F(RestartMonitoring, loadsAnewAndStaysOffWhenMonitoringWasOff) {
    load(configurationOf({"a"}));
    writeSites(configurationOf({"a", "b"}));
    model->restartMonitoring();
    EXPECT_TRUE(model->isLoading());
    settle();
    EXPECT_FALSE(model->isMonitoring());
    EXPECT_EQ(model->snapshots().size(), 2U);
    EXPECT_EQ(cycles(), 0U);
}

TEST_F(RestartMonitoring, checksTheNewConfigurationAtOnceWhenMonitoringWasOn) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    answerChecks();
    writeSites(configurationOf({"b"}));
    model->restartMonitoring();
    EXPECT_TRUE(model->isMonitoring());
    settle();
    ASSERT_EQ(cycles(), 2U);
    EXPECT_EQ(idsOf(checks.siteCalls[1]->definitions), std::vector<std::string>{"b"});
    answerChecks();
    EXPECT_EQ(clock.timerCount(), 1U);
}

TEST_F(RestartMonitoring, seesTheOldLoopOutBeforeTheNewOneChecksAnything) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    model->restartMonitoring();
    EXPECT_FALSE(model->isChecking());
    settle();
    EXPECT_EQ(cycles(), 1U) << "the cancelled checks have not ended";
    EXPECT_FALSE(model->isLoading());
    checks.siteCalls[0]->answer.give({checkOf("a")});
    settle();
    ASSERT_EQ(cycles(), 2U);
    EXPECT_TRUE(writer.appended.empty());
    EXPECT_TRUE(model->isChecking());
}

TEST_F(RestartMonitoring, seesACheckNowOutToo) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    answerChecks();
    model->checkNow();
    settle();
    model->restartMonitoring();
    settle();
    EXPECT_EQ(cycles(), 2U);
    checks.siteCalls[1]->answer.give({checkOf("a")});
    settle();
    EXPECT_EQ(cycles(), 3U);
    EXPECT_EQ(writer.appended.size(), 1U);
}

TEST_F(RestartMonitoring, manyTimesInARowMakesOneLoop) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    for (int time = 0; time < 5; ++time) {
        model->restartMonitoring();
        settle();
    }
    EXPECT_EQ(cycles(), 1U);
    checks.siteCalls[0]->answer.give({});
    settle();
    EXPECT_EQ(cycles(), 2U);
    answerChecks();
    EXPECT_EQ(clock.timerCount(), 1U);
    advance(seconds(300));
    EXPECT_EQ(cycles(), 3U);
}

TEST_F(RestartMonitoring, isOverBeforeItsFirstCheckWhenStoppedMeanwhile) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    model->restartMonitoring();
    settle();
    model->stopMonitoring();
    answerChecks();
    EXPECT_EQ(cycles(), 1U);
    EXPECT_TRUE(writer.appended.empty());
    EXPECT_FALSE(model->isChecking());
}

TEST_F(RestartMonitoring, endsASleepingLoop) {
    load(configurationOf({"a"}));
    answerChecksAtOnce();
    model->startMonitoring();
    settle();
    advance(seconds(100));
    model->restartMonitoring();
    settle();
    EXPECT_EQ(cycles(), 2U);
    EXPECT_EQ(clock.timerCount(), 1U);
    advance(seconds(299));
    EXPECT_EQ(cycles(), 2U) << "the old deadline is forgotten";
}

TEST_F(RestartMonitoring, letsCheckNowInAgainAtOnce) {
    load(configurationOf({"a"}));
    model->checkNow();
    settle();
    model->restartMonitoring();
    model->checkNow();
    settle();
    EXPECT_EQ(cycles(), 2U);
    answerChecks();
    EXPECT_EQ(writer.appended.size(), 1U) << "only the second was made under the present configuration";
}

TEST_F(RestartMonitoring, leavesAnEarlierErrorAlone) {
    load(configurationOf({"a"}));
    model->checkNow();
    settle();
    writer.failAppend(1, "Disk gone");
    answerChecks();
    model->restartMonitoring();
    settle();
    EXPECT_TRUE(model->operationError().has_value());
}

} // namespace
} // namespace kestrin
