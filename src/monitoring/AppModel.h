#pragma once

#include "monitoring/AppModelLoadResult.h"
#include "monitoring/CheckTrigger.h"
#include "monitoring/LoadedState.h"
#include "monitoring/ModelLoader.h"
#include "monitoring/MonitorPage.h"
#include "monitoring/MonitoringCheckRunner.h"
#include "notifications/NotificationObserving.h"
#include "state/StateWriting.h"
#include "tasks/BlockingPool.h"
#include "tasks/ChangeListeners.h"
#include "tasks/Clock.h"
#include "tasks/TaskScope.h"
#include "tasks/WeakReference.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// The heart of the program: owns the schedule, runs check cycles, writes their results, keeps the snapshots that
/// the dashboard shows and the only mutable copy of the loaded configuration. Lives on the main thread, that is on
/// `mainExecutor`; every member is touched there only. The constructor starts the first load. Its tasks hold it
/// through weak references and end when it is gone.
class AppModel {
public:
    using WallClock = std::function<std::chrono::system_clock::time_point()>;

    /// What the model works with. References must outlive the model and the last of its tasks.
    struct Collaborators {
        StateReader reader;
        StateWriting& writer;
        std::shared_ptr<const CustomProviderReading> customProviderStore;
        std::shared_ptr<const ServiceDirectory> services;
        MonitoringCheckRunner checkRunner;
        NotificationObserving& notificationCoordinator;
        TaskScope& tasks; ///< the model's tasks count in it
        Executor& mainExecutor;
        Clock& clock;
        BlockingPool& loadPool;
        WallClock wallClock;
    };

    explicit AppModel(Collaborators collaborators);
    /// Cancels its tasks, which then end by themselves, and makes its lease invalid; announces nothing more.
    ~AppModel();
    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    /// Starts the loop: a first cycle at once, then one after each interval. Nothing when it runs.
    void startMonitoring();
    /// Drops the loop and any Check now at once; what is in flight is discarded. Waits for nothing.
    void stopMonitoring();
    /// One cycle out of turn, also while monitoring is off. Nothing while one is in flight or asked for.
    void checkNow();
    /// After the configuration was changed: loads it and, if monitoring was on, starts afresh behind the old loop.
    void restartMonitoring();
    /// Loads the state directory anew, superseding a load that runs and every result gathered so far.
    void reload();
    /// Reloads if a file has a revision that the model neither knows nor made. Nothing while a load or a comparison
    /// runs.
    void refreshIfStateChanged();
    /// Shows a website and remembers the choice in "sites.json": during a load once that has ended, unless the
    /// program ends first. Where somebody else has written the file since the last load, it is loaded instead, and
    /// the choice counts until the program ends.
    void selectSite(const std::string& id);
    /// The program ends: stops everything and starts nothing more.
    void shutdown();

    /// Calls `listener` after every change of what follows, on the main thread and possibly many times in a row.
    [[nodiscard]] ChangeListeners::Subscription onChange(std::function<void()> listener) {
        return listeners_.add(std::move(listener));
    }

    [[nodiscard]] const std::vector<SiteSnapshot>& snapshots() const { return loaded_.snapshots; }
    [[nodiscard]] std::span<const SiteSnapshot> visibleSnapshots() const { return loaded_.visibleSnapshots(); }
    [[nodiscard]] const SiteSnapshot* selectedSnapshot() const; ///< null when there are none
    [[nodiscard]] const std::string& selectedSiteID() const { return selectedSiteID_; }
    [[nodiscard]] const std::vector<ProviderSnapshot>& providerSnapshots() const {
        return loaded_.providerSnapshots;
    }
    [[nodiscard]] const std::string& selectedProviderID() const { return selectedProviderID_; }
    void setSelectedProviderID(std::string id);
    [[nodiscard]] MonitorPage monitorPage() const { return monitorPage_; }
    void setMonitorPage(MonitorPage page);
    [[nodiscard]] bool providerStatusEnabled() const { return loaded_.providerStatusEnabled(); }
    [[nodiscard]] const std::optional<std::string>& customProviderIssue() const {
        return loaded_.customProviderIssue;
    }
    [[nodiscard]] bool isFirstRun() const { return loaded_.isFirstRun; }
    [[nodiscard]] const std::optional<std::string>& loadError() const { return loaded_.loadError; }
    [[nodiscard]] const std::optional<std::string>& configurationIssue() const {
        return loaded_.configurationIssue;
    }
    [[nodiscard]] const std::optional<std::string>& operationError() const { return operationError_; }
    [[nodiscard]] std::optional<std::chrono::system_clock::time_point> lastLoadedAt() const {
        return loaded_.loadedAt;
    }
    [[nodiscard]] bool isMonitoring() const { return isMonitoring_; }
    [[nodiscard]] bool isChecking() const { return isChecking_; }
    [[nodiscard]] bool isLoading() const { return isLoading_; }
    [[nodiscard]] std::int64_t intervalSeconds() const { return loaded_.intervalSeconds(); }
    [[nodiscard]] const NotificationManagementState& notificationState() const { return notificationState_; }
    [[nodiscard]] const std::optional<SiteConfiguration>& configuration() const { return loaded_.configuration; }
    /// What notifications are to be told now.
    [[nodiscard]] NotificationInputs notificationInputs() const;
    /// The load that runs, for whoever waits until it has ended; test `isLoading` again afterwards.
    [[nodiscard]] const TaskHandle<>& reloadTask() const { return reloadTask_; }

private:
    using Reference = WeakReference<AppModel>;
    struct CycleTicket;
    using SiteChecks = TaskHandle<std::vector<CheckRecord>>;
    using ServiceChecks = TaskHandle<std::vector<ProviderCheckRecord>>;

    void startLoop(CheckTrigger first, TaskHandle<> earlierLoop, TaskHandle<> earlierManualCheck);
    static bool goesOn(const Reference& self, const TaskContext& context);
    static Task<> monitor(
        Reference self, CheckTrigger first, TaskHandle<> earlierLoop, TaskHandle<> earlierManualCheck);
    static Task<> runManualCheck(Reference self, std::uint64_t generation);
    static Task<> waitForReload(Reference self);
    void reloadAfterFailure();

    static Task<> runCycle(Reference self, CheckTrigger trigger);
    static Task<> performCycle(Reference self, TaskContext context, CycleTicket ticket,
        MonitoringCheckRunner runner, CheckTrigger trigger);
    std::optional<CycleTicket> beginCycle(const TaskContext& context);
    void endCycle(const CycleTicket& ticket);
    std::vector<NotificationObservation> recordResults(
        const SiteChecks& siteChecks, const ServiceChecks& serviceChecks, CheckTrigger trigger);
    bool recordSite(const CheckRecord& record);
    bool recordService(const ProviderCheckRecord& record);
    void rememberChoice(const std::string& id);
    void storeChoiceOfLoad();
    static Task<> notify(
        Reference self, TaskContext context, CycleTicket ticket, std::vector<NotificationObservation> observations);

    static Task<> runReload(
        Reference self, std::uint64_t generation, std::optional<std::string> previousActiveSiteID);
    static Task<> runRevisionRefresh(Reference self);
    void apply(AppModelLoadResult result, const std::optional<std::string>& previousActiveSiteID);
    void announceChange() const;

    Collaborators collaborators_;
    ModelLoader loader_;
    TaskScope tasks_;
    WeakReferenceSource<AppModel> self_;
    ChangeListeners listeners_;

    LoadedState loaded_;
    std::string selectedSiteID_;
    std::string selectedProviderID_;
    MonitorPage monitorPage_ = MonitorPage::sites;
    std::optional<std::string> operationError_;
    bool isMonitoring_ = false;
    bool isChecking_ = false;
    bool isLoading_ = true;
    NotificationManagementState notificationState_;

    /// A website chosen while a load runs, which outlasts the load.
    struct ChoiceDuringLoad {
        std::string id;
        bool isToBeStored = true; ///< once the load has ended
    };
    std::optional<ChoiceDuringLoad> choiceDuringLoad_;
    /// Files that the model itself has written so far: between two looks at the disk, a difference may be its own.
    std::uint64_t ownWrites_ = 0;

    // Three counters that only grow. Long work remembers one and compares it when it comes back.
    std::uint64_t policyGeneration_ = 0;        ///< what was configured when the work began
    std::uint64_t manualCheckGeneration_ = 0;   ///< who may clear `manualCheckTask_`
    std::uint64_t checkActivityGeneration_ = 0; ///< who may clear `isChecking_`
    std::shared_ptr<NotificationPolicyLease> notificationPolicyLease_;

    TaskHandle<> monitoringTask_;
    TaskHandle<> manualCheckTask_;
    TaskHandle<> reloadTask_;
    TaskHandle<> revisionRefreshTask_;
};

} // namespace kestrin
