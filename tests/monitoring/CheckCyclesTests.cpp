#include "monitoring/CheckCycles.h"

#include "fakes/FakeMonitoredModel.h"
#include "fakes/FakeServices.h"
#include "fakes/ManualExecutor.h"
#include "fakes/ScriptedCheckRunner.h"
#include "monitoring/MonitorHarness.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

/// Cycles over a model without a state directory. A whole model is behind them in `CheckCycleTests`.
class CyclesAlone : public ::testing::Test {
protected:
    ManualExecutor main;
    TaskScope tasks;
    ScriptedCheckRunner checks;
    FakeMonitoredModel model;
    std::optional<CheckCycles> cycles{std::in_place, model, checks.runner()};

    CyclesAlone() {
        model.toCheck.sites = {siteNamed("a")};
        model.toCheck.services = {FakeServices::serviceNamed("openai", "OpenAI")};
    }
    ~CyclesAlone() override { EXPECT_EQ(tasks.size(), 0U) << "a cycle has not ended"; }

    TaskHandle<> run(CheckTrigger trigger) {
        TaskHandle<> cycle = tasks.spawn(main, cycles->run(trigger));
        main.runUntilIdle();
        return cycle;
    }

    void answer() {
        checks.siteCalls.back()->answer.give(checksOf(checks.siteCalls.back()->definitions));
        checks.serviceCalls.back()->answer.give(serviceChecksOf(checks.serviceCalls.back()->definitions));
        main.runUntilIdle();
    }
};

TEST_F(CyclesAlone, recordWhatWasCheckedAndTellNotifications) {
    const TaskHandle<> cycle = run(CheckTrigger::scheduled);
    EXPECT_TRUE(cycles->isChecking());
    EXPECT_TRUE(model.recordedSites.empty());
    answer();
    EXPECT_TRUE(cycle.done());
    EXPECT_FALSE(cycles->isChecking());
    EXPECT_EQ(model.recordedSites.size(), 1U);
    EXPECT_EQ(model.recordedServices.size(), 1U);
    EXPECT_EQ(model.told.size(), 2U);
    EXPECT_EQ(model.changes, 2);
}

TEST_F(CyclesAlone, tellNotificationsNothingOfACheckThatTheUserAskedFor) {
    run(CheckTrigger::manual);
    answer();
    EXPECT_EQ(model.recordedSites.size(), 1U);
    EXPECT_TRUE(model.told.empty());
}

TEST_F(CyclesAlone, doNotBeginWithoutTargets) {
    model.toCheck = {};
    EXPECT_TRUE(run(CheckTrigger::start).done());
    EXPECT_TRUE(checks.siteCalls.empty());
    EXPECT_EQ(model.changes, 0);
}

TEST_F(CyclesAlone, takeTheirTargetsAfterTheLoad) {
    model.beginLoad();
    run(CheckTrigger::start);
    EXPECT_TRUE(checks.siteCalls.empty());
    model.toCheck.sites = {siteNamed("b")};
    model.endLoad();
    main.runUntilIdle();
    ASSERT_EQ(checks.siteCalls.size(), 1U);
    EXPECT_EQ(idsOf(checks.siteCalls[0]->definitions), (std::vector<std::string>{"b"}));
    answer();
}

TEST_F(CyclesAlone, areNotRunTwoAtATime) {
    run(CheckTrigger::scheduled);
    EXPECT_TRUE(run(CheckTrigger::manual).done());
    EXPECT_EQ(checks.siteCalls.size(), 1U);
    answer();
}

TEST_F(CyclesAlone, discardResultsThatWereGatheredBeforeALoad) {
    run(CheckTrigger::scheduled);
    model.reload();
    answer();
    EXPECT_TRUE(model.recordedSites.empty());
    EXPECT_TRUE(model.told.empty());
    EXPECT_FALSE(cycles->isChecking());
}

TEST_F(CyclesAlone, letAnotherBeginOnceTheyAreAbandoned) {
    const TaskHandle<> first = run(CheckTrigger::scheduled);
    const auto firstSites = checks.siteCalls[0];
    const auto firstServices = checks.serviceCalls[0];
    first.cancel();
    cycles->abandon();
    EXPECT_FALSE(cycles->isChecking());
    run(CheckTrigger::start);
    ASSERT_EQ(checks.siteCalls.size(), 2U);
    firstSites->answer.give(checksOf(firstSites->definitions));
    firstServices->answer.give(serviceChecksOf(firstServices->definitions));
    main.runUntilIdle();
    EXPECT_TRUE(first.done());
    EXPECT_TRUE(cycles->isChecking()) << "the abandoned cycle ended the newer one's mark";
    EXPECT_TRUE(model.recordedSites.empty());
    answer();
    EXPECT_EQ(model.recordedSites.size(), 1U);
}

TEST_F(CyclesAlone, complainOnceAndEndWhenChecksBreakTheirPromise) {
    checks.siteResults = [](const auto&) -> std::vector<CheckRecord> {
        throw std::runtime_error("the checks broke");
    };
    EXPECT_TRUE(run(CheckTrigger::scheduled).done());
    EXPECT_EQ(model.complaints, (std::vector<std::string>{"the checks broke"}));
    EXPECT_FALSE(cycles->isChecking());
}

TEST_F(CyclesAlone, endWithoutTheirObject) {
    const TaskHandle<> cycle = run(CheckTrigger::scheduled);
    cycles.reset();
    answer();
    EXPECT_TRUE(cycle.done());
    EXPECT_TRUE(model.recordedSites.empty());
}

} // namespace
} // namespace kestrin
