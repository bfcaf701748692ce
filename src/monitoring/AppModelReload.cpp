#include "monitoring/AppModel.h"

#include "monitoring/MonitoredTargets.h"
#include "monitoring/Selection.h"
#include "tasks/CancellationError.h"
#include "tasks/Offload.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

namespace kestrin {

namespace {

/// The blocking work of a reload and of a comparison; each owns a copy of all it reads.
struct Load {
    ModelLoader loader;
    KnownHistories known;
    AppModelLoadResult operator()(const std::stop_token& stop) const { return loader.load(known, stop); }
};

struct Comparison {
    ModelLoader loader;
    ExpectedStateRevisions expected;
    bool operator()(const std::stop_token& stop) const { return loader.revisionsMatch(expected, stop); }
};

} // namespace

void AppModel::reload() {
    std::optional<std::string> previousActiveSiteID = loaded_.activeSiteID();
    // First the lease, then the generation, and no await between: nobody may see one without the other.
    notificationPolicyLease_->invalidate();
    notificationPolicyLease_ = std::make_shared<NotificationPolicyLease>();
    ++policyGeneration_;
    if (reloadTask_) reloadTask_.cancel();
    if (revisionRefreshTask_) revisionRefreshTask_.cancel();
    revisionRefreshTask_.reset();
    isLoading_ = true;
    reloadTask_ = tasks_.spawn(collaborators_.mainExecutor,
        runReload(self_.reference(), policyGeneration_, std::move(previousActiveSiteID)));
    announceChange();
}

Task<> AppModel::runReload(
    Reference self, std::uint64_t generation, std::optional<std::string> previousActiveSiteID) {
    std::optional<Load> load;
    BlockingPool* pool = nullptr;
    {
        AppModel* const model = self.get();
        if (!model) co_return;
        load.emplace(model->loader_, model->loaded_.knownHistories());
        pool = &model->collaborators_.loadPool;
    }
    AppModelLoadResult result;
    try {
        Task<AppModelLoadResult> loading = offload(*pool, std::move(*load));
        result = co_await std::move(loading);
    } catch (const CancellationError&) {
        // The pool has ended with the load still waiting in it.
        result = LoadFailed::byCancellation();
    } catch (const std::exception& error) {
        // No thread could be had for the load; that is told like any other failure of it.
        result = LoadFailed{error.what()};
    }

    NotificationInputs inputs;
    NotificationObserving* coordinator = nullptr;
    {
        AppModel* const model = self.get();
        if (!model || model->policyGeneration_ != generation) co_return;
        model->apply(std::move(result), previousActiveSiteID);
        inputs = model->notificationInputs();
        coordinator = &model->collaborators_.notificationCoordinator;
    }
    // What notifications remember is brought in line before loading counts as finished.
    const std::shared_ptr<NotificationPolicyLease> lease = inputs.lease;
    NotificationManagementState answer;
    try {
        Task<NotificationManagementState> refreshing = coordinator->refreshState(std::move(inputs));
        answer = co_await std::move(refreshing);
    } catch (const std::exception& error) {
        // Loading must come to its end, or every cycle would wait for it.
        answer.availability = NotificationsUnavailable{error.what()};
    }

    AppModel* const model = self.get();
    if (!model || model->policyGeneration_ != generation || !lease->isValid()) co_return;
    model->notificationState_ = std::move(answer);
    model->isLoading_ = false;
    model->reloadTask_.reset();
    model->announceChange();
    model->storeChoiceOfLoad();
}

Task<> AppModel::waitForLoad(Reference self) {
    while (true) {
        const AppModel* const model = self.get();
        if (!model || !model->isLoading_ || !model->reloadTask_ || model->reloadTask_.done()) co_return;
        const TaskHandle<> reload = model->reloadTask_;
        // Another load may have begun meanwhile, so the question is asked again.
        co_await reload.join();
    }
}

void AppModel::apply(AppModelLoadResult result, const std::optional<std::string>& previousActiveSiteID) {
    loaded_ = LoadedState::from(std::move(result), collaborators_.wallClock());
    selectedSiteID_ =
        reconciledSiteSelection(selectedSiteID_, previousActiveSiteID, loaded_.activeSiteID(), visibleSnapshots());
    if (choiceDuringLoad_ && isShown(choiceDuringLoad_->id, visibleSnapshots()))
        selectedSiteID_ = choiceDuringLoad_->id;
    selectedProviderID_ = reconciledProviderSelection(selectedProviderID_, loaded_.providerSnapshots);
    announceChange();
}

void AppModel::refreshIfStateChanged() {
    if (isLoading_ || revisionRefreshTask_) return;
    // After a failure nothing is known of what is on disk. Incomplete histories have known revisions but lack
    // lines.
    if (loaded_.loadError || !loaded_.incompleteHistories.empty()) return reload();
    revisionRefreshTask_ = tasks_.spawn(collaborators_.mainExecutor, runRevisionRefresh(self_.reference()));
}

Task<> AppModel::runRevisionRefresh(Reference self) {
    const TaskContext context = co_await currentContext();
    bool isUnchanged = false;
    std::uint64_t writesSeen = 0;
    do {
        std::optional<Comparison> comparison;
        BlockingPool* pool = nullptr;
        {
            const AppModel* const model = self.get();
            if (!model || context.isCancelled()) co_return;
            comparison.emplace(model->loader_, model->loaded_.expectedRevisions());
            writesSeen = model->ownWrites_;
            pool = &model->collaborators_.loadPool;
        }
        try {
            Task<bool> comparing = offload(*pool, std::move(*comparison));
            isUnchanged = co_await std::move(comparing);
        } catch (const std::exception&) {
            // What cannot be compared is loaded again, and the load reports what is wrong.
            isUnchanged = false;
        }
        // A difference may be a line that the model wrote meanwhile. To take it for somebody else's would cost a
        // load and the results of whatever is in flight.
    } while (!isUnchanged && self.get() && self.get()->ownWrites_ != writesSeen);

    // A comparison that was cancelled has been superseded, and the field is no longer its own.
    AppModel* const model = self.get();
    if (!model || context.isCancelled()) co_return;
    model->revisionRefreshTask_.reset();
    // A foreign line just before one of the model's own leaves the revisions equal, but is known to be missing.
    if (!isUnchanged || !model->loaded_.incompleteHistories.empty()) model->reload();
}

} // namespace kestrin
