#include "monitoring/AppModel.h"

#include "monitoring/MonitoredTargets.h"
#include "tasks/Spawn.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <stop_token>
#include <string>
#include <utility>

namespace kestrin {

namespace {

/// Checks of one kind. Their failure cancels the other kind: nothing of this cycle will be written.
template <class Record>
Task<std::vector<Record>> cancellingBoth(Task<std::vector<Record>> checks, std::stop_source both) {
    try {
        std::vector<Record> records = co_await std::move(checks);
        co_return records;
    } catch (...) {
        both.request_stop();
        throw;
    }
}

} // namespace

/// What a cycle set out with, compared when it comes back.
struct AppModel::CycleTicket {
    std::uint64_t activityGeneration = 0; ///< before this cycle raised it
    std::uint64_t policyGeneration = 0;
    std::vector<SiteDefinition> sites;
    std::vector<ProviderDefinition> services;
};

Task<> AppModel::runCycle(Reference self, CheckTrigger trigger) {
    const TaskContext context = co_await currentContext();
    co_await waitForReload(self);

    std::optional<CycleTicket> begun;
    MonitoringCheckRunner runner;
    {
        AppModel* const model = self.get();
        if (!model) co_return;
        begun = model->beginCycle(context);
        runner = model->collaborators_.checkRunner;
    }
    if (!begun) co_return;
    const CycleTicket ticket = std::move(*begun);
    try {
        Task<> cycle = performCycle(self, context, ticket, std::move(runner), trigger);
        co_await std::move(cycle);
    } catch (const std::exception& error) {
        // Neither checks nor notifications throw. If one does, the loop goes on and the user reads why, unless the
        // cycle was cancelled.
        AppModel* const model = self.get();
        if (model && !context.isCancelled() && model->policyGeneration_ == ticket.policyGeneration) {
            model->operationError_ = std::string("The checks broke off: ") + error.what();
            model->announceChange();
        }
    }
    if (AppModel* const model = self.get()) model->endCycle(ticket);
}

Task<> AppModel::performCycle(
    Reference self, TaskContext context, CycleTicket ticket, MonitoringCheckRunner runner, CheckTrigger trigger) {
    // Both are there before either starts: an operation that throws instead of giving a task leaves nothing
    // running.
    Task<std::vector<CheckRecord>> sites = runner.performSiteChecks(std::exchange(ticket.sites, {}));
    Task<std::vector<ProviderCheckRecord>> services =
        runner.performProviderChecks(std::exchange(ticket.services, {}));
    const std::stop_source both;
    const std::stop_callback<std::function<void()>> link(
        context.stopToken, [stop = both]() mutable { stop.request_stop(); });
    const SiteChecks siteChecks =
        spawnChild(*context.executor, both.get_token(), cancellingBoth(std::move(sites), both));
    const ServiceChecks serviceChecks =
        spawnChild(*context.executor, both.get_token(), cancellingBoth(std::move(services), both));
    co_await siteChecks.join();
    co_await serviceChecks.join();

    std::vector<NotificationObservation> observations;
    {
        AppModel* const model = self.get();
        if (!model) co_return;
        if (!context.isCancelled() && model->policyGeneration_ == ticket.policyGeneration) {
            observations = model->recordResults(siteChecks, serviceChecks, trigger);
        }
    }
    if (observations.empty()) co_return;
    Task<> notifying = notify(self, context, ticket, std::move(observations));
    co_await std::move(notifying);
}

std::optional<AppModel::CycleTicket> AppModel::beginCycle(const TaskContext& context) {
    if (context.isCancelled() || isChecking_) return std::nullopt;
    CycleTicket ticket;
    if (loaded_.configuration) ticket.sites = monitoredSites(*loaded_.configuration);
    if (loaded_.providerStatusEnabled())
        for (const ProviderSnapshot& snapshot : loaded_.providerSnapshots)
            ticket.services.push_back(snapshot.provider);
    if (ticket.sites.empty() && ticket.services.empty()) return std::nullopt;

    ticket.activityGeneration = checkActivityGeneration_++;
    ticket.policyGeneration = policyGeneration_;
    isChecking_ = true;
    announceChange();
    return ticket;
}

void AppModel::endCycle(const CycleTicket& ticket) {
    // Otherwise a stop, a restart or a newer cycle owns the mark now.
    if (checkActivityGeneration_ != ticket.activityGeneration + 1) return;
    isChecking_ = false;
    announceChange();
}

// Gives what notifications are to hear: nothing of a manual cycle and nothing of one that could not be written
// whole.
std::vector<NotificationObservation> AppModel::recordResults(
    const SiteChecks& siteChecks, const ServiceChecks& serviceChecks, CheckTrigger trigger) {
    const std::vector<CheckRecord> siteRecords = siteChecks.take();
    const std::vector<ProviderCheckRecord> serviceRecords = serviceChecks.take();
    std::vector<NotificationObservation> observations;
    try {
        for (const CheckRecord& record : siteRecords) {
            if (!recordSite(record)) {
                // The website is gone from a configuration that nobody saw change: its line stands, and the rest of
                // the cycle gives way to a load.
                reload();
                return {};
            }
            if (isAutomatic(trigger)) observations.push_back(observationOf(record));
        }
        const std::set<std::string> monitored =
            loaded_.configuration && loaded_.providerStatusEnabled()
                ? monitoredServiceIDs(*collaborators_.services, loaded_.configuration->providerStatus,
                      loaded_.customProviderConfiguration)
                : std::set<std::string>();
        for (const ProviderCheckRecord& record : serviceRecords)
            if (monitored.contains(record.providerID) && recordService(record) && isAutomatic(trigger))
                observations.push_back(observationOf(record));
    } catch (const std::exception& error) {
        operationError_ = std::string("Could not save check history: ") + error.what();
        announceChange();
        return {};
    }
    operationError_.reset();
    announceChange();
    return observations;
}

// Written first and looked up afterwards: a check that was made is not lost. False without a snapshot to show it
// in.
bool AppModel::recordSite(const CheckRecord& record) {
    ++ownWrites_;
    const HistoryAppend append = collaborators_.writer.appendCheck(record);
    if (!loaded_.take(record, append)) return false;
    announceChange();
    return true;
}

// Looked up first: the record of a service that is no longer wanted is not written.
bool AppModel::recordService(const ProviderCheckRecord& record) {
    if (!loaded_.showsService(record.providerID)) return false;
    ++ownWrites_;
    const HistoryAppend append = collaborators_.writer.appendProviderCheck(record);
    if (!loaded_.take(record, append)) return false;
    announceChange();
    return true;
}

Task<> AppModel::notify(
    Reference self, TaskContext context, CycleTicket ticket, std::vector<NotificationObservation> observations) {
    NotificationInputs inputs;
    NotificationObserving* coordinator = nullptr;
    {
        AppModel* const model = self.get();
        if (!model || context.isCancelled() || model->policyGeneration_ != ticket.policyGeneration) co_return;
        inputs = model->notificationInputs();
        coordinator = &model->collaborators_.notificationCoordinator;
    }
    const std::shared_ptr<NotificationPolicyLease> lease = inputs.lease;
    Task<NotificationManagementState> observing = coordinator->observe(std::move(observations), std::move(inputs));
    NotificationManagementState answer = co_await std::move(observing);

    AppModel* const model = self.get();
    if (!model || model->policyGeneration_ != ticket.policyGeneration || !lease->isValid()) co_return;
    model->notificationState_ = std::move(answer);
    model->announceChange();
}

} // namespace kestrin
