#pragma once

#include "fakes/HeldAnswer.h"
#include "monitoring/MonitoredModel.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// A model without a state directory: the test says what to check and lets loads end, and it keeps what it is
/// given.
class FakeMonitoredModel : public MonitoredModel {
public:
    CycleTargets toCheck;
    std::int64_t interval = 300;
    std::uint64_t generation = 0;
    bool lacksSomething = false; ///< so that it reloads before checks
    std::vector<CheckRecord> recordedSites;
    std::vector<ProviderCheckRecord> recordedServices;
    std::vector<NotificationObservation> told;
    std::vector<std::string> complaints;
    int reloads = 0;
    mutable int changes = 0;

    void beginLoad() {
        ++generation;
        load_ = std::make_shared<HeldAnswer<bool>>();
    }
    void endLoad() { std::exchange(load_, nullptr)->give(true); }

    [[nodiscard]] Task<> loaded() const override { return end(load_); }
    void reload() override {
        ++reloads;
        ++generation;
    }
    void reloadAfterFailure() override {
        if (lacksSomething) reload();
    }
    [[nodiscard]] CycleTargets targets() const override { return toCheck; }
    [[nodiscard]] std::int64_t intervalSeconds() const override { return interval; }
    [[nodiscard]] std::uint64_t policyGeneration() const override { return generation; }
    std::vector<NotificationObservation> record(
        const std::vector<CheckRecord>& sites, const std::vector<ProviderCheckRecord>& services) override {
        std::vector<NotificationObservation> observations;
        for (const CheckRecord& site : sites)
            observations.push_back(observationOf(site));
        for (const ProviderCheckRecord& service : services)
            observations.push_back(observationOf(service));
        recordedSites.insert(recordedSites.end(), sites.begin(), sites.end());
        recordedServices.insert(recordedServices.end(), services.begin(), services.end());
        return observations;
    }
    [[nodiscard]] Task<> notify(std::vector<NotificationObservation> observations) override {
        told.insert(told.end(), observations.begin(), observations.end());
        return end(nullptr);
    }
    void checksBrokeOff(const std::string& reason) override { complaints.push_back(reason); }
    void announceChange() const override { ++changes; }

private:
    static Task<> end(std::shared_ptr<HeldAnswer<bool>> load) {
        if (!load) co_return;
        auto wait = load->wait();
        (void)co_await wait;
    }

    std::shared_ptr<HeldAnswer<bool>> load_;
};

} // namespace kestrin
