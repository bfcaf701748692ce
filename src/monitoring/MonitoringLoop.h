#pragma once

#include "monitoring/CheckCycles.h"
#include "tasks/Clock.h"
#include "tasks/Executor.h"
#include "tasks/TaskScope.h"

#include <cstdint>

namespace kestrin {

/// The schedule: a cycle at once when the user starts monitoring, then one after each interval, and those that the
/// user asks for in between. Sees an earlier loop out before the next one checks anything. Main thread. Its tasks
/// hold it through weak references and end when it is gone.
class MonitoringLoop {
public:
    /// What the loop works with; all of it must outlive the loop and the last of its tasks, but for `tasks`, in
    /// which they count, and `model`, which must outlive the loop alone.
    struct Collaborators {
        MonitoredModel& model;
        MonitoringCheckRunner checkRunner;
        TaskScope& tasks;
        Executor& mainExecutor;
        Clock& clock;
    };

    explicit MonitoringLoop(Collaborators collaborators);

    [[nodiscard]] bool isMonitoring() const { return isMonitoring_; }
    [[nodiscard]] bool isChecking() const { return cycles_.isChecking(); }
    /// No cycle is in flight and none was asked for.
    [[nodiscard]] bool acceptsCheckNow() const { return !isChecking() && !manualCheckTask_; }

    /// Starts the loop. Nothing when it runs.
    void start();
    /// Drops the loop and any check that the user asked for, and waits for nothing.
    void stop();
    /// One cycle out of turn. Nothing unless it is accepted.
    void checkNow();
    /// Loads the model anew. Drops what is in flight and, if the loop was running, starts it behind the old one.
    void restart();

private:
    using Reference = WeakReference<MonitoringLoop>;

    void startLoop(CheckTrigger first, TaskHandle<> earlierLoop, TaskHandle<> earlierManualCheck);
    static bool goesOn(const Reference& self, const TaskContext& context);
    static Task<> run(
        Reference self, CheckTrigger first, TaskHandle<> earlierLoop, TaskHandle<> earlierManualCheck);
    static Task<> runManualCheck(Reference self, std::uint64_t generation);
    static Task<> runCycle(Reference self, CheckTrigger trigger);

    MonitoredModel& model_;
    Executor& mainExecutor_;
    Clock& clock_;
    TaskScope tasks_;
    WeakReferenceSource<MonitoringLoop> self_;
    CheckCycles cycles_;
    bool isMonitoring_ = false;
    TaskHandle<> loopTask_;
    TaskHandle<> manualCheckTask_;
    std::uint64_t manualCheckGeneration_ = 0; ///< who may clear `manualCheckTask_`; only grows
};

} // namespace kestrin
