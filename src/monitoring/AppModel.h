#pragma once

#include "monitoring/LoadedState.h"
#include "monitoring/ModelLoader.h"
#include "monitoring/MonitorPage.h"
#include "monitoring/MonitoringLoop.h"
#include "notifications/NotificationObserving.h"
#include "notifications/NotificationRoute.h"
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
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// The heart of the program: keeps what was loaded, and what of it the dashboard shows, in line with the state
/// directory, writes the results of checks, and tells notifications about them. The schedule of the checks is its
/// `MonitoringLoop`. Lives on the main thread, that is on `mainExecutor`; every member is touched there only. The
/// constructor starts the first load. Its tasks hold it through weak references and end when it is gone.
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
    /// Shows the target of an alert on its page, without saving the choice. Ignores a route of another schema
    /// version and a target that is unknown or not monitored. Call it after `loaded()` has ended.
    void show(const NotificationRoute& route);
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
    [[nodiscard]] bool isMonitoring() const { return loop_.isMonitoring(); }
    [[nodiscard]] bool isChecking() const { return loop_.isChecking(); }
    [[nodiscard]] bool isLoading() const { return isLoading_; }
    [[nodiscard]] std::int64_t intervalSeconds() const { return loaded_.intervalSeconds(); }
    [[nodiscard]] const NotificationManagementState& notificationState() const { return notificationState_; }
    [[nodiscard]] const std::optional<SiteConfiguration>& configuration() const { return loaded_.configuration; }
    /// What notifications are to be told now.
    [[nodiscard]] NotificationInputs notificationInputs() const;
    /// Ends when no load runs, also for a later load that begins before the first has ended. Main thread; may
    /// outlive the model.
    [[nodiscard]] Task<> loaded() const { return waitForLoad(self_.reference()); }

private:
    using Reference = WeakReference<AppModel>;
    class Monitored;

    [[nodiscard]] std::unique_ptr<MonitoredModel> seenByTheLoop();
    void reloadAfterFailure();
    std::vector<NotificationObservation> recordResults(
        const std::vector<CheckRecord>& sites, const std::vector<ProviderCheckRecord>& services);
    bool recordSite(const CheckRecord& record);
    bool recordService(const ProviderCheckRecord& record);
    static Task<> tellNotifications(Reference self, std::vector<NotificationObservation> observations);
    void rememberChoice(const std::string& id);
    void storeChoiceOfLoad();

    static Task<> waitForLoad(Reference self);
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

    /// What was configured when a piece of work began: it grows with every load, and whoever comes back to find it
    /// changed gives up.
    std::uint64_t policyGeneration_ = 0;
    std::shared_ptr<NotificationPolicyLease> notificationPolicyLease_;
    TaskHandle<> reloadTask_;
    TaskHandle<> revisionRefreshTask_;

    std::unique_ptr<MonitoredModel> monitored_;
    MonitoringLoop loop_; ///< the first to go
};

} // namespace kestrin
