#pragma once

#include "monitoring/AppModel.h"
#include "monitoring/LiveCheckers.h"
#include "notifications/InertNotifications.h"
#include "state/StateWriter.h"
#include "tasks/SerialExecutor.h"
#include "tasks/TaskScope.h"
#include "tasks/ThreadPool.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>

namespace kestrin {

/// Everything behind the model, built at launch in the order in which the pieces need each other and taken down in
/// a set order: cancel, wait for every task, then the threads. Main thread.
class MonitoringGraph {
public:
    /// `mainExecutor` and `clock` outlive the graph.
    MonitoringGraph(const std::filesystem::path& stateRoot, Executor& mainExecutor, Clock& clock);
    ~MonitoringGraph();

    [[nodiscard]] AppModel& model() { return *model_; }
    /// For checks that the user asks for beside those of the model.
    [[nodiscard]] LiveCheckers& checkers() { return checkers_; }

    /// Lets the main thread's work go on until a condition holds, or gives up and returns false.
    using RunMainUntil = std::function<bool(const std::function<bool()>& isOver)>;

    /// Cancels every task and waits until all have ended. False when a task or a thread has not ended in time, or a
    /// lookup still runs: the process must then end without running destructors.
    [[nodiscard]] bool shutDown(const RunMainUntil& runMainUntil);

private:
    Executor& mainExecutor_;
    ThreadPool pool_;
    SerialExecutor checkExecutor_;
    std::stop_source shutdown_;
    LiveCheckers checkers_;
    StateWriter writer_;
    InertNotifications notifications_;
    TaskScope tasks_; ///< the outermost one: the program has ended when it is empty
    std::unique_ptr<AppModel> model_;
};

} // namespace kestrin
