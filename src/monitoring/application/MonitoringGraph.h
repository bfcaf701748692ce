#pragma once

#include "http/ProxySettings.h"
#include "monitoring/AppModel.h"
#include "notifications/InertNotifications.h"
#include "state/StateWriter.h"
#include "tasks/SerialExecutor.h"
#include "tasks/ThreadPool.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <stop_token>

namespace kestrin {

/// Everything behind the model, built at launch in the order in which the pieces need each other and taken down in
/// a set order: cancel, drain, then the pools. Main thread.
class MonitoringGraph {
public:
    /// `mainExecutor` and `clock` outlive the graph.
    MonitoringGraph(const std::filesystem::path& stateRoot, Executor& mainExecutor, Clock& clock);
    ~MonitoringGraph();

    [[nodiscard]] AppModel& model() { return *model_; }

    /// Stops the model and waits for its tasks, draining the main executor by `drain`. False when a name resolution
    /// is stuck: its thread still runs, and the process must then end without running destructors.
    [[nodiscard]] bool shutDown(const std::function<void()>& drain);

private:
    /// What checks, over one transport.
    struct Checkers;
    /// Made by the first check, on whatever thread that runs.
    [[nodiscard]] const Checkers& checkers();

    ThreadPool pool_;
    ThreadPool resolverPool_;
    SerialExecutor checkExecutor_;
    std::stop_source shutdown_;
    Clock& clock_;
    ProxySettings proxySettings_; ///< read at launch, before other threads look at the environment
    std::once_flag checkersAreMade_;
    std::unique_ptr<Checkers> checkers_;
    StateWriter writer_;
    InertNotifications notifications_;
    std::unique_ptr<AppModel> model_;
};

} // namespace kestrin
