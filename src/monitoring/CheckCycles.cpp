#include "monitoring/CheckCycles.h"

#include "tasks/Spawn.h"

#include <exception>
#include <functional>
#include <stop_token>
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

CheckCycles::CheckCycles(MonitoredModel& model, MonitoringCheckRunner runner)
    : model_(model), runner_(std::move(runner)), self_(*this) {}

void CheckCycles::abandon() {
    ++activityGeneration_;
    isChecking_ = false;
}

Task<> CheckCycles::runCycle(Reference self, CheckTrigger trigger) {
    const TaskContext context = co_await currentContext();
    co_await waitForLoad(self);

    CycleTargets targets;
    MonitoringCheckRunner runner;
    Ticket ticket;
    {
        CheckCycles* const cycles = self.get();
        if (!cycles || context.isCancelled() || cycles->isChecking_) co_return;
        targets = cycles->model_.targets();
        if (targets.empty()) co_return;
        runner = cycles->runner_;
        ticket = cycles->begin();
    }
    try {
        Task<> cycle = performCycle(self, context, ticket, std::move(targets), std::move(runner), trigger);
        co_await std::move(cycle);
    } catch (const std::exception& error) {
        // Neither checks nor notifications throw. If one does, the loop goes on and the user reads why, unless the
        // cycle was cancelled.
        const CheckCycles* const cycles = self.get();
        if (cycles && cycles->isCurrent(ticket, context)) cycles->model_.checksBrokeOff(error.what());
    }
    if (CheckCycles* const cycles = self.get()) cycles->end(ticket);
}

Task<> CheckCycles::waitForLoad(Reference self) {
    const CheckCycles* const cycles = self.get();
    if (!cycles) co_return;
    Task<> loaded = cycles->model_.loaded();
    co_await std::move(loaded);
}

Task<> CheckCycles::performCycle(Reference self, TaskContext context, Ticket ticket, CycleTargets targets,
    MonitoringCheckRunner runner, CheckTrigger trigger) {
    // Create both tasks before starting either: if an operation throws instead of returning a task, nothing runs.
    Task<std::vector<CheckRecord>> sites = runner.performSiteChecks(std::move(targets.sites));
    Task<std::vector<ProviderCheckRecord>> services = runner.performProviderChecks(std::move(targets.services));
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
        CheckCycles* const cycles = self.get();
        if (!cycles || !cycles->isCurrent(ticket, context)) co_return;
        const std::vector<CheckRecord> siteRecords = siteChecks.take();
        const std::vector<ProviderCheckRecord> serviceRecords = serviceChecks.take();
        observations = cycles->model_.record(siteRecords, serviceRecords);
        // Whoever heard of the new results may have stopped or restarted everything.
        if (!cycles->isCurrent(ticket, context)) co_return;
    }
    // The user who asked for a check is looking at its result already.
    if (observations.empty() || !isAutomatic(trigger)) co_return;
    Task<> notifying = notify(self, std::move(observations));
    co_await std::move(notifying);
}

Task<> CheckCycles::notify(Reference self, std::vector<NotificationObservation> observations) {
    const CheckCycles* const cycles = self.get();
    if (!cycles) co_return;
    Task<> notifying = cycles->model_.notify(std::move(observations));
    co_await std::move(notifying);
}

CheckCycles::Ticket CheckCycles::begin() {
    const Ticket ticket{.activityGeneration = activityGeneration_++, .policyGeneration = model_.policyGeneration()};
    isChecking_ = true;
    model_.announceChange();
    return ticket;
}

void CheckCycles::end(const Ticket& ticket) {
    // Otherwise a stop, a restart or a newer cycle owns the mark now.
    if (activityGeneration_ != ticket.activityGeneration + 1) return;
    isChecking_ = false;
    model_.announceChange();
}

bool CheckCycles::isCurrent(const Ticket& ticket, const TaskContext& context) const {
    return !context.isCancelled() && model_.policyGeneration() == ticket.policyGeneration;
}

} // namespace kestrin
