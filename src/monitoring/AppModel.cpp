#include "monitoring/AppModel.h"

#include "monitoring/MonitoredTargets.h"
#include "monitoring/Selection.h"
#include "tasks/Sleep.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace kestrin {

namespace {

// A field that is absent is a handle to nothing; cancelling that is nothing.
void cancelAndForget(TaskHandle<>& task) {
    if (task) task.cancel();
    task.reset();
}

} // namespace

AppModel::AppModel(Collaborators collaborators)
    : collaborators_(std::move(collaborators)),
      loader_(collaborators_.reader, collaborators_.customProviderStore, collaborators_.services),
      tasks_(collaborators_.tasks.inner()), self_(*this),
      notificationPolicyLease_(std::make_shared<NotificationPolicyLease>()) {
    reload();
}

AppModel::~AppModel() {
    // Its scope cancels the tasks: a loop that sleeps would otherwise learn of the end only at its next wake.
    notificationPolicyLease_->invalidate();
}

void AppModel::startMonitoring() {
    if (isMonitoring_) return;
    isMonitoring_ = true;
    operationError_.reset();
    reloadAfterFailure();
    startLoop(CheckTrigger::start, {}, {});
    announceChange();
}

void AppModel::stopMonitoring() {
    cancelAndForget(monitoringTask_);
    ++manualCheckGeneration_;
    cancelAndForget(manualCheckTask_);
    ++checkActivityGeneration_;
    isMonitoring_ = false;
    isChecking_ = false;
    announceChange();
}

void AppModel::checkNow() {
    if (isChecking_ || manualCheckTask_) return;
    operationError_.reset();
    reloadAfterFailure();
    ++manualCheckGeneration_;
    manualCheckTask_ =
        tasks_.spawn(collaborators_.mainExecutor, runManualCheck(self_.reference(), manualCheckGeneration_));
    announceChange();
}

Task<> AppModel::runManualCheck(Reference self, std::uint64_t generation) {
    co_await waitForReload(self);
    co_await runCycle(self, CheckTrigger::manual);
    AppModel* const model = self.get();
    if (!model || model->manualCheckGeneration_ != generation) co_return;
    model->manualCheckTask_.reset();
    model->announceChange();
}

void AppModel::restartMonitoring() {
    const bool wasMonitoring = isMonitoring_;
    const TaskHandle<> earlierLoop = std::exchange(monitoringTask_, {});
    const TaskHandle<> earlierManualCheck = std::exchange(manualCheckTask_, {});
    if (earlierLoop) earlierLoop.cancel();
    if (earlierManualCheck) earlierManualCheck.cancel();
    ++manualCheckGeneration_;
    ++checkActivityGeneration_;
    isChecking_ = false;
    reload();
    isMonitoring_ = wasMonitoring;
    if (wasMonitoring) startLoop(CheckTrigger::restart, earlierLoop, earlierManualCheck);
    announceChange();
}

void AppModel::shutdown() {
    stopMonitoring();
    notificationPolicyLease_->invalidate();
    ++policyGeneration_;
    cancelAndForget(reloadTask_);
    isLoading_ = false;
    cancelAndForget(revisionRefreshTask_);
    announceChange();
}

void AppModel::startLoop(CheckTrigger first, TaskHandle<> earlierLoop, TaskHandle<> earlierManualCheck) {
    monitoringTask_ = tasks_.spawn(collaborators_.mainExecutor,
        monitor(self_.reference(), first, std::move(earlierLoop), std::move(earlierManualCheck)));
}

bool AppModel::goesOn(const Reference& self, const TaskContext& context) {
    const AppModel* const model = self.get();
    return model && !context.isCancelled() && model->isMonitoring_;
}

Task<> AppModel::monitor(
    Reference self, CheckTrigger first, TaskHandle<> earlierLoop, TaskHandle<> earlierManualCheck) {
    const TaskContext context = co_await currentContext();
    // The cancelled loop is seen out first: two of them never overlap.
    if (earlierLoop) co_await earlierLoop.join();
    if (earlierManualCheck) co_await earlierManualCheck.join();
    if (!goesOn(self, context)) co_return;
    co_await waitForReload(self);
    if (!goesOn(self, context)) co_return;
    co_await runCycle(self, first);

    while (goesOn(self, context)) {
        // Counted from the end of the cycle: no catching up, and the interval is read afresh.
        Clock& clock = self.get()->collaborators_.clock;
        const Instant wake = saturatingAfter(clock.now(), self.get()->loaded_.intervalSeconds());
        const SleepResult slept = co_await sleepUntil(clock, wake);
        if (slept == SleepResult::Cancelled || !goesOn(self, context)) co_return;
        self.get()->reloadAfterFailure();
        co_await runCycle(self, CheckTrigger::scheduled);
    }
}

Task<> AppModel::waitForReload(Reference self) {
    while (true) {
        const AppModel* const model = self.get();
        if (!model || !model->isLoading_ || !model->reloadTask_ || model->reloadTask_.done()) co_return;
        const TaskHandle<> reload = model->reloadTask_;
        // Another load may have begun meanwhile, so the question is asked again.
        co_await reload.join();
    }
}

// A file that was damaged for a moment must not end checks until somebody opens the dashboard. A load costs little
// where the histories did not change, but it would throw away the results of a cycle in flight.
void AppModel::reloadAfterFailure() {
    const bool wasIncomplete = loaded_.loadError || loaded_.customProviderIssue;
    if (wasIncomplete && !isLoading_ && !isChecking_) reload();
}

const SiteSnapshot* AppModel::selectedSnapshot() const {
    const auto visible = visibleSnapshots();
    if (visible.empty()) return nullptr;
    const auto found = std::ranges::find_if(
        visible, [this](const SiteSnapshot& snapshot) { return snapshot.site.id == selectedSiteID_; });
    return found == visible.end() ? &visible.front() : &*found;
}

void AppModel::selectSite(const std::string& id) {
    if (!isShown(id, visibleSnapshots())) return;
    if (isLoading_) {
        // Written now, it would look to the load like somebody else's change.
        choiceDuringLoad_ = ChoiceDuringLoad{.id = id};
    } else if (loaded_.configuration->activeSiteID != id) {
        try {
            rememberChoice(id);
        } catch (const std::exception& error) {
            operationError_ = std::string("Could not remember the selected website: ") + error.what();
            announceChange();
            return;
        }
    }
    selectedSiteID_ = id;
    operationError_.reset();
    announceChange();
}

void AppModel::rememberChoice(const std::string& id) {
    const auto revisionOnDisk = [this] {
        return collaborators_.reader.configurationRevision().value_or(HistoryFileRevision());
    };
    // Somebody has written the file since it was loaded, and the model's copy would undo that.
    if (revisionOnDisk() != loaded_.configurationRevision) {
        choiceDuringLoad_ = ChoiceDuringLoad{.id = id, .isToBeStored = false};
        return reload();
    }
    SiteConfiguration chosen = *loaded_.configuration;
    chosen.activeSiteID = id;
    ++ownWrites_;
    collaborators_.writer.saveConfiguration(chosen, Backup::None);
    // Read afresh, so that the model's own write does not look like somebody else's.
    loaded_.configurationRevision = revisionOnDisk();
    loaded_.configuration = std::move(chosen);
}

void AppModel::storeChoiceOfLoad() {
    const std::optional<ChoiceDuringLoad> choice = std::exchange(choiceDuringLoad_, std::nullopt);
    if (choice && choice->isToBeStored) selectSite(choice->id);
}

void AppModel::setSelectedProviderID(std::string id) {
    selectedProviderID_ = std::move(id);
    announceChange();
}

void AppModel::setMonitorPage(MonitorPage page) {
    monitorPage_ = page;
    announceChange();
}

NotificationInputs AppModel::notificationInputs() const {
    NotificationInputs inputs;
    inputs.lease = notificationPolicyLease_;
    if (!loaded_.configuration) return inputs;
    TargetDescription description = describeTargets({.configuration = *loaded_.configuration,
        .isSaved = !loaded_.isFirstRun,
        .added = loaded_.customProviderConfiguration,
        .addedAreReadable = !loaded_.customProviderIssue,
        .directory = *collaborators_.services,
        .sites = loaded_.snapshots,
        .services = loaded_.providerSnapshots});
    inputs.contexts = std::move(description.contexts);
    inputs.policy = description.policy;
    return inputs;
}

void AppModel::announceChange() const {
    listeners_.announce();
}

} // namespace kestrin
