#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

using std::chrono::hours;
using std::chrono::seconds;

constexpr int day = 86400;
constexpr int noon = 10 * day + day / 2;

/// Checks are stamped with a wall clock that the test sets, while the schedule goes by the other one.
class TroubledTime : public MonitorTest {
protected:
    void start(const std::vector<std::string>& sites) {
        checks.siteResults = [this](const std::vector<SiteDefinition>& definitions) {
            std::vector<CheckRecord> records;
            for (const SiteDefinition& site : definitions)
                records.push_back(checkOf(site.id, isUp, wallSecond));
            return records;
        };
        writeSites(configurationOf(sites));
        AppModel::Collaborators parts = collaborators();
        parts.wallClock = [this] { return std::chrono::system_clock::time_point(seconds(wallSecond)); };
        model = std::make_unique<AppModel>(std::move(parts));
        settle();
        model->startMonitoring();
        settle();
    }

    /// Time goes on by both clocks.
    void pass(seconds duration) {
        wallSecond += static_cast<int>(duration.count());
        advance(duration);
    }

    [[nodiscard]] std::size_t cycles() const { return checks.siteCalls.size(); }

    [[nodiscard]] std::vector<std::string> stampsOnDisk(const std::string& site) const {
        std::vector<std::string> stamps;
        for (const CheckRecord& record : historyOnDisk(site).recentChecks)
            stamps.push_back(record.timestamp);
        return stamps;
    }

    int wallSecond = noon;
    bool isUp = true;
};

class AWallClockThatJumps : public TroubledTime, public testing::WithParamInterface<int> {};

TEST_P(AWallClockThatJumps, movesNoCheckOfTheSchedule) {
    start({"a"});
    ASSERT_EQ(cycles(), 1U);
    const auto deadline = clock.nextDeadline();
    pass(seconds(100));
    wallSecond += GetParam();
    settle();
    EXPECT_EQ(clock.nextDeadline(), deadline);
    pass(seconds(199));
    EXPECT_EQ(cycles(), 1U);
    pass(seconds(1));
    EXPECT_EQ(cycles(), 2U);
    pass(seconds(300));
    EXPECT_EQ(cycles(), 3U);
}

TEST_P(AWallClockThatJumps, losesNoLineAndKeepsThemInTheOrderOfTheChecks) {
    start({"a", "b"});
    std::vector<std::string> expected = {checkOf("a", true, wallSecond).timestamp};
    for (int beat = 0; beat < 4; ++beat) {
        if (beat == 1) wallSecond += GetParam();
        pass(seconds(300));
        expected.push_back(checkOf("a", true, wallSecond).timestamp);
    }
    EXPECT_EQ(stampsOnDisk("a"), expected);
    EXPECT_EQ(stampsOnDisk("b"), expected);
    EXPECT_EQ(snapshot("a").history, historyOnDisk("a")) << "memory and disk tell the same";
    EXPECT_EQ(model->operationError(), std::nullopt);
}

TEST_P(AWallClockThatJumps, isNoForeignChangeToAComparison) {
    start({"a"});
    wallSecond += GetParam();
    pass(seconds(300));
    const auto loaded = model->lastLoadedAt();
    model->refreshIfStateChanged();
    settle();
    EXPECT_FALSE(model->isLoading());
    EXPECT_EQ(model->lastLoadedAt(), loaded);
}

TEST_P(AWallClockThatJumps, duringAnIncidentLeavesItOneIncident) {
    isUp = false;
    start({"a"});
    wallSecond += GetParam();
    pass(seconds(300));
    isUp = true;
    pass(seconds(300));
    const auto incidents = snapshot("a").history.incidents();
    ASSERT_EQ(incidents.size(), 1U);
    EXPECT_EQ(incidents[0].startedText, checkOf("a", false, noon).timestamp);
    EXPECT_EQ(incidents[0].endedText, checkOf("a", true, noon + 600 + GetParam()).timestamp);
    EXPECT_EQ(historyOnDisk("a").incidents(), incidents);
}

INSTANTIATE_TEST_SUITE_P(ByADay, AWallClockThatJumps, testing::Values(day, -day),
    [](const testing::TestParamInfo<int>& jump) { return jump.param > 0 ? "ahead" : "back"; });

TEST_F(TroubledTime, secondsThatComeTwiceGiveARecordEach) {
    start({"a"});
    wallSecond -= 300;
    pass(seconds(300));
    EXPECT_EQ(stampsOnDisk("a"), std::vector<std::string>(2, checkOf("a", true, noon).timestamp));
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 2);
}

TEST_F(TroubledTime, eightHoursOfMachineSleepAreFollowedByExactlyOneCycle) {
    start({"a", "b"});
    pass(seconds(10));
    pass(hours(8));
    EXPECT_EQ(cycles(), 2U) << "not one for each of the 96 beats that were slept through";
    EXPECT_EQ(clock.nextDeadline(), clock.now() + seconds(300)) << "the next interval begins on waking";
    EXPECT_EQ(stampsOnDisk("a").size(), 2U);
    pass(seconds(299));
    EXPECT_EQ(cycles(), 2U);
    pass(seconds(1));
    EXPECT_EQ(cycles(), 3U);
}

TEST_F(TroubledTime, machineSleepDuringACycleDelaysTheNextOneAndAddsNone) {
    checks.siteResults = nullptr;
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    ASSERT_TRUE(model->isChecking());
    advance(hours(8));
    EXPECT_EQ(cycles(), 1U);
    answerChecks();
    EXPECT_EQ(cycles(), 1U);
    EXPECT_EQ(historyOnDisk("a").totalCheckCount, 1);
    advance(seconds(300));
    EXPECT_EQ(cycles(), 2U);
}

TEST_F(TroubledTime, machineSleepWhileStoppedChecksNothing) {
    start({"a"});
    model->stopMonitoring();
    settle();
    pass(hours(8));
    EXPECT_EQ(cycles(), 1U);
    EXPECT_EQ(clock.timerCount(), 0U);
}

} // namespace
} // namespace kestrin
