#pragma once

#include "monitoring/CheckTrigger.h"
#include "monitoring/MonitoredModel.h"
#include "monitoring/MonitoringCheckRunner.h"
#include "tasks/Task.h"
#include "tasks/TaskHandle.h"
#include "tasks/WeakReference.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace kestrin {

/// Runs check cycles, one at a time: asks the model for targets, checks all of them, and gives the results back
/// together. Discards them if the task was cancelled or a load has begun meanwhile. Knows nothing of the schedule.
/// Main thread.
class CheckCycles {
public:
    /// `model` must outlive the object.
    CheckCycles(MonitoredModel& model, MonitoringCheckRunner runner);

    /// Checks are in flight.
    [[nodiscard]] bool isChecking() const { return isChecking_; }
    /// Waits until no load runs, then runs a cycle. Does nothing if another cycle is in flight by then or there is
    /// nothing to check. The task may outlive the object.
    [[nodiscard]] Task<> run(CheckTrigger trigger) const { return runCycle(self_.reference(), trigger); }
    /// The cycle in flight no longer counts, so another may begin. Cancelling its task is up to the caller.
    void abandon();

private:
    using Reference = WeakReference<CheckCycles>;
    using SiteChecks = TaskHandle<std::vector<CheckRecord>>;
    using ServiceChecks = TaskHandle<std::vector<ProviderCheckRecord>>;

    /// What a cycle remembers when it begins and compares after each wait.
    struct Ticket {
        std::uint64_t activityGeneration = 0; ///< before this cycle raised it
        std::uint64_t policyGeneration = 0;
    };

    static Task<> waitForLoad(Reference self);
    static Task<> runCycle(Reference self, CheckTrigger trigger);
    static Task<> performCycle(Reference self, TaskContext context, Ticket ticket, CycleTargets targets,
        MonitoringCheckRunner runner, CheckTrigger trigger);
    static Task<> notify(Reference self, std::vector<NotificationObservation> observations);
    [[nodiscard]] Ticket begin();
    void end(const Ticket& ticket);
    [[nodiscard]] bool isCurrent(const Ticket& ticket, const TaskContext& context) const;

    MonitoredModel& model_;
    MonitoringCheckRunner runner_;
    WeakReferenceSource<CheckCycles> self_;
    bool isChecking_ = false;
    std::uint64_t activityGeneration_ = 0; ///< who may clear `isChecking_`; only grows
};

} // namespace kestrin
