#include "monitoring/AppModel.h"

#include <exception>
#include <set>
#include <string>
#include <utility>

namespace kestrin {

/// The model as its loop sees it.
class AppModel::Monitored final : public MonitoredModel {
public:
    explicit Monitored(AppModel& model) : model_(model) {}

    [[nodiscard]] Task<> loaded() const override { return model_.loaded(); }
    void reload() override { model_.reload(); }
    void reloadAfterFailure() override { model_.reloadAfterFailure(); }
    [[nodiscard]] CycleTargets targets() const override { return model_.loaded_.targets(); }
    [[nodiscard]] std::int64_t intervalSeconds() const override { return model_.intervalSeconds(); }
    [[nodiscard]] std::uint64_t policyGeneration() const override { return model_.policyGeneration_; }
    std::vector<NotificationObservation> record(
        const std::vector<CheckRecord>& sites, const std::vector<ProviderCheckRecord>& services) override {
        return model_.recordResults(sites, services);
    }
    [[nodiscard]] Task<> notify(std::vector<NotificationObservation> observations) override {
        return tellNotifications(model_.self_.reference(), std::move(observations));
    }
    void checksBrokeOff(const std::string& reason) override {
        model_.operationError_ = "The checks broke off: " + reason;
        model_.announceChange();
    }
    void announceChange() const override { model_.announceChange(); }

private:
    AppModel& model_;
};

std::unique_ptr<MonitoredModel> AppModel::seenByTheLoop() {
    return std::make_unique<Monitored>(*this);
}

// A file that was damaged for a moment must not end checks until somebody opens the dashboard. A load costs little
// where the histories did not change, but it would throw away the results of a cycle in flight.
void AppModel::reloadAfterFailure() {
    const bool wasIncomplete = loaded_.loadError || loaded_.customProviderIssue;
    if (wasIncomplete && !isLoading_ && !isChecking()) reload();
}

std::vector<NotificationObservation> AppModel::recordResults(
    const std::vector<CheckRecord>& sites, const std::vector<ProviderCheckRecord>& services) {
    std::vector<NotificationObservation> observations;
    try {
        for (const CheckRecord& record : sites) {
            if (!recordSite(record)) {
                // The configuration has changed and no longer contains the website. The line stays in the history.
                // A load replaces the rest of the cycle.
                reload();
                return {};
            }
            observations.push_back(observationOf(record));
        }
        const std::set<std::string> monitored = loaded_.monitoredServices(*collaborators_.services);
        for (const ProviderCheckRecord& record : services)
            if (monitored.contains(record.providerID) && recordService(record))
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

// Writes before it looks for the snapshot, so that no finished check is lost. Returns false if there is no
// snapshot.
bool AppModel::recordSite(const CheckRecord& record) {
    ++ownWrites_;
    const HistoryAppend append = collaborators_.writer.appendCheck(record);
    if (!loaded_.take(record, append)) return false;
    announceChange();
    return true;
}

// Looks for the snapshot first: the record of a service that is no longer monitored is not written.
bool AppModel::recordService(const ProviderCheckRecord& record) {
    if (!loaded_.showsService(record.providerID)) return false;
    ++ownWrites_;
    const HistoryAppend append = collaborators_.writer.appendProviderCheck(record);
    if (!loaded_.take(record, append)) return false;
    announceChange();
    return true;
}

Task<> AppModel::tellNotifications(Reference self, std::vector<NotificationObservation> observations) {
    NotificationInputs inputs;
    NotificationObserving* coordinator = nullptr;
    std::uint64_t generation = 0;
    {
        const AppModel* const model = self.get();
        if (!model) co_return;
        inputs = model->notificationInputs();
        coordinator = &model->collaborators_.notificationCoordinator;
        generation = model->policyGeneration_;
    }
    const std::shared_ptr<NotificationPolicyLease> lease = inputs.lease;
    Task<NotificationManagementState> observing = coordinator->observe(std::move(observations), std::move(inputs));
    NotificationManagementState answer = co_await std::move(observing);

    AppModel* const model = self.get();
    if (!model || model->policyGeneration_ != generation || !lease->isValid()) co_return;
    model->notificationState_ = std::move(answer);
    model->announceChange();
}

} // namespace kestrin
