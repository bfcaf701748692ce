#include "fakes/CountingPool.h"
#include "monitoring/MonitorHarness.h"
#include "services/KnownServices.h"
#include "tasks/SerialExecutor.h"
#include "tasks/ThreadPool.h"

#include <future>

namespace kestrin {
namespace {

Task<std::vector<CheckRecord>> checkAtOnce(std::vector<SiteDefinition> sites) {
    co_return checksOf(sites);
}

Task<std::vector<ProviderCheckRecord>> checkAtOnce(std::vector<ProviderDefinition> services) {
    co_return serviceChecksOf(services);
}

/// Runs `work` on the executor and waits for it.
void runOnMain(Executor& executor, const std::function<void()>& work) {
    std::promise<void> done;
    executor.post([&] {
        work();
        done.set_value();
    });
    done.get_future().get();
}

TEST(ModelOnThreads, loadsChecksComparesAndEndsWithRealThreads) {
    MonitorHarness harness;
    SiteConfiguration configuration = configurationOf({"a", "b"});
    configuration.providerStatus.enabled = true;
    harness.writeSites(configuration);

    ThreadPool threads(4);
    CountingPool pool(threads);
    SerialExecutor mainExecutor(pool);
    AppModel::Collaborators collaborators = {.reader = harness.reader,
        .writer = harness.writer,
        .customProviderStore = harness.customProviders,
        .services = std::make_shared<KnownServices>(),
        .checkRunner = {},
        .notificationCoordinator = harness.notifications,
        .tasks = harness.tasks,
        .mainExecutor = mainExecutor,
        .clock = harness.clock,
        .loadPool = pool,
        .wallClock = [] { return std::chrono::system_clock::time_point(); }};
    collaborators.checkRunner.performSiteChecks = [](auto sites) { return checkAtOnce(std::move(sites)); };
    collaborators.checkRunner.performProviderChecks = [](auto services) {
        return checkAtOnce(std::move(services));
    };

    std::unique_ptr<AppModel> model;
    std::promise<void> checkedTwice;
    bool reported = false;
    ChangeListeners::Subscription listening;
    runOnMain(mainExecutor, [&] {
        model = std::make_unique<AppModel>(std::move(collaborators));
        listening = model->onChange([&] {
            const bool fresh = !model->snapshots().empty() && !model->isChecking() && !model->isLoading();
            if (!fresh || model->snapshots()[1].history.totalCheckCount < 1) return;
            if (model->snapshots()[1].history.totalCheckCount == 1) model->checkNow();
            if (model->snapshots()[1].history.totalCheckCount == 2 && !std::exchange(reported, true))
                checkedTwice.set_value();
        });
        model->startMonitoring();
    });
    checkedTwice.get_future().get();
    runOnMain(mainExecutor, [&] {
        listening.end();
        EXPECT_EQ(model->snapshots()[0].history, harness.historyOnDisk("a"));
        model->refreshIfStateChanged();
        model->reload();
        model->restartMonitoring();
        model.reset();
    });
    pool.waitUntilIdle();
    EXPECT_EQ(harness.clock.timerCount(), 0U);
}

} // namespace
} // namespace kestrin
