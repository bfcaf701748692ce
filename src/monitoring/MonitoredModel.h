#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"
#include "monitoring/CycleTargets.h"
#include "notifications/NotificationObservation.h"
#include "tasks/Task.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kestrin {

/// What the monitoring loop needs of the model that it works for: what to check and when, and somebody to give the
/// results to. Main thread. It outlives the loop; the tasks that it gives may outlive both.
class MonitoredModel {
public:
    virtual ~MonitoredModel() = default;

    /// Ends when no load runs.
    [[nodiscard]] virtual Task<> loaded() const = 0;
    virtual void reload() = 0;
    /// Loads again if the last load failed, or could not read everything. Never throws away a cycle in flight.
    virtual void reloadAfterFailure() = 0;
    [[nodiscard]] virtual CycleTargets targets() const = 0;
    /// From the end of one cycle to the start of the next.
    [[nodiscard]] virtual std::int64_t intervalSeconds() const = 0;
    /// Grows when a load begins. Results of checks that were started before are discarded.
    [[nodiscard]] virtual std::uint64_t policyGeneration() const = 0;

    /// Writes the records and shows them. Returns an observation for each record that counts, or nothing if not all
    /// could be written.
    virtual std::vector<NotificationObservation> record(
        const std::vector<CheckRecord>& sites, const std::vector<ProviderCheckRecord>& services) = 0;
    /// Tells notifications what an automatic cycle has observed, and shows their answer unless a load has begun
    /// meanwhile.
    [[nodiscard]] virtual Task<> notify(std::vector<NotificationObservation> observations) = 0;
    /// The checks or notifications threw, which they promise not to do.
    virtual void checksBrokeOff(const std::string& reason) = 0;
    /// What the loop says about itself has changed.
    virtual void announceChange() const = 0;
};

} // namespace kestrin
