#include "monitoring/MonitorHarness.h"

#include <stdexcept>

namespace kestrin {
namespace {

using std::chrono::seconds;

/// Neighbours that promised not to throw, and do: nothing hangs, and the user is told.
class ABrokenPromise : public MonitorTest {
protected:
    /// Whether a fresh Check now goes through, which it does when nothing of the broken one is left.
    void expectThatCheckingGoesOn() {
        EXPECT_FALSE(model->isChecking());
        EXPECT_FALSE(model->isLoading());
        const auto before = model->snapshots().at(0).history.totalCheckCount;
        model->checkNow();
        settle();
        answerChecks();
        EXPECT_EQ(model->snapshots().at(0).history.totalCheckCount, before + 1);
        EXPECT_EQ(model->operationError(), std::nullopt);
    }
};

TEST_F(ABrokenPromise, ofTheNotificationsIsToldAndTheLoopGoesOn) {
    load(configurationOf({"a"}));
    notifications.throws = true;
    model->startMonitoring();
    settle();
    answerChecks();
    EXPECT_EQ(model->operationError(), "The checks broke off: the notifications broke");
    EXPECT_FALSE(model->isChecking());

    notifications.throws = false;
    advance(seconds(300));
    EXPECT_TRUE(model->isChecking()) << "the next cycle came";
    answerChecks();
    expectThatCheckingGoesOn();
}

TEST_F(ABrokenPromise, ofTheNotificationsDuringALoadEndsTheLoadAllTheSame) {
    writeSites(configurationOf({"a"}));
    notifications.throws = true;
    load();
    EXPECT_EQ(model->notificationState().availability,
        NotificationStateAvailability(NotificationsUnavailable{"the notifications broke"}));
    expectThatCheckingGoesOn();
}

TEST_F(ABrokenPromise, ofTheChecksIsToldAndTheLoopGoesOn) {
    load(configurationOf({"a"}));
    bool broken = true;
    AppModel::Collaborators others = collaborators();
    const auto performSiteChecks = others.checkRunner.performSiteChecks;
    others.checkRunner.performSiteChecks = [&broken, performSiteChecks](std::vector<SiteDefinition> sites) {
        if (broken) throw std::runtime_error("the checks broke");
        return performSiteChecks(std::move(sites));
    };
    model = std::make_unique<AppModel>(std::move(others));
    settle();
    model->checkNow();
    settle();
    EXPECT_EQ(model->operationError(), "The checks broke off: the checks broke");
    broken = false;
    expectThatCheckingGoesOn();
}

Task<std::vector<CheckRecord>> countedStart(int& starts) {
    ++starts;
    co_return std::vector<CheckRecord>();
}

Task<std::vector<ProviderCheckRecord>> breakingChecks() {
    co_await currentContext();
    throw std::runtime_error("the checks broke");
}

TEST_F(ABrokenPromise, ofAnOperationThatThrowsAtOnceLeavesTheOtherKindUnstarted) {
    writeSites(configurationOf({"a"}));
    AppModel::Collaborators others = collaborators();
    int starts = 0;
    others.checkRunner.performSiteChecks = [&](std::vector<SiteDefinition>) { return countedStart(starts); };
    others.checkRunner.performProviderChecks =
        [](std::vector<ProviderDefinition>) -> Task<std::vector<ProviderCheckRecord>> {
        throw std::runtime_error("the checks broke");
    };
    model = std::make_unique<AppModel>(std::move(others));
    settle();
    model->checkNow();
    settle();
    EXPECT_EQ(model->operationError(), "The checks broke off: the checks broke");
    EXPECT_EQ(starts, 0);
    EXPECT_FALSE(model->isChecking());
}

TEST_F(ABrokenPromise, ofOneKindOfChecksCancelsTheOtherAndWaitsForIt) {
    writeSites(configurationOf({"a"}));
    AppModel::Collaborators others = collaborators();
    others.checkRunner.performProviderChecks = [](std::vector<ProviderDefinition>) { return breakingChecks(); };
    model = std::make_unique<AppModel>(std::move(others));
    settle();
    model->checkNow();
    settle();
    ASSERT_EQ(checks.siteCalls.size(), 1U);
    EXPECT_TRUE(checks.siteCalls.at(0)->isCancelled());
    EXPECT_TRUE(model->isChecking()) << "the cycle has ended while a check of it is in flight";
    answerChecks();
    EXPECT_EQ(model->operationError(), "The checks broke off: the checks broke");
    EXPECT_TRUE(writer.appended.empty());
    EXPECT_FALSE(model->isChecking());
}

TEST_F(ABrokenPromise, ofThreadsLetsALoadFailWithItsReasonAndLaterOnesSucceed) {
    writeSites(configurationOf({"a"}));
    loads.refuses = true;
    load();
    EXPECT_TRUE(model->loadError().has_value());
    EXPECT_FALSE(model->isLoading());
    model->startMonitoring();
    settle();
    EXPECT_FALSE(model->isChecking());
    model->stopMonitoring();

    loads.refuses = false;
    model->refreshIfStateChanged();
    settle();
    EXPECT_EQ(model->loadError(), std::nullopt);
    expectThatCheckingGoesOn();
}

TEST_F(ABrokenPromise, ofThreadsDuringAComparisonLeadsToALoadThatTells) {
    load(configurationOf({"a"}));
    loads.refuses = true;
    model->refreshIfStateChanged();
    settle();
    EXPECT_TRUE(model->loadError().has_value());

    loads.refuses = false;
    model->refreshIfStateChanged();
    settle();
    expectThatCheckingGoesOn();
}

} // namespace
} // namespace kestrin
