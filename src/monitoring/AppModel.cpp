#include "monitoring/AppModel.h"

#include "monitoring/MonitoredTargets.h"
#include "monitoring/Selection.h"

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
      notificationPolicyLease_(std::make_shared<NotificationPolicyLease>()), monitored_(seenByTheLoop()),
      loop_({.model = *monitored_,
          .checkRunner = collaborators_.checkRunner,
          .tasks = collaborators_.tasks,
          .mainExecutor = collaborators_.mainExecutor,
          .clock = collaborators_.clock}) {
    reload();
}

AppModel::~AppModel() {
    // Its scope cancels the tasks: a loop that sleeps would otherwise learn of the end only at its next wake.
    notificationPolicyLease_->invalidate();
}

void AppModel::startMonitoring() {
    if (loop_.isMonitoring()) return;
    operationError_.reset();
    loop_.start();
}

void AppModel::stopMonitoring() {
    loop_.stop();
}

void AppModel::checkNow() {
    if (!loop_.acceptsCheckNow()) return;
    operationError_.reset();
    loop_.checkNow();
}

void AppModel::restartMonitoring() {
    loop_.restart();
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

void AppModel::show(const NotificationRoute& route) {
    if (route.schemaVersion != NotificationRoute::currentSchemaVersion) return;
    const std::vector<NotificationTargetContext> targets = notificationInputs().contexts;
    const bool isEligible = std::ranges::any_of(targets,
        [&](const NotificationTargetContext& target) { return target.key == route.target && target.isEligible; });
    if (!isEligible) return;
    switch (route.target.kind) {
    case NotificationTargetKind::website:
        selectedSiteID_ = route.target.id;
        monitorPage_ = MonitorPage::sites;
        break;
    case NotificationTargetKind::provider:
        selectedProviderID_ = route.target.id;
        monitorPage_ = MonitorPage::providers;
        break;
    }
    announceChange();
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
