#include "monitoring/MonitoringLoop.h"

#include "tasks/Sleep.h"

#include <utility>

namespace kestrin {

MonitoringLoop::MonitoringLoop(Collaborators collaborators)
    : model_(collaborators.model), mainExecutor_(collaborators.mainExecutor), clock_(collaborators.clock),
      tasks_(collaborators.tasks.inner()), self_(*this),
      cycles_(collaborators.model, std::move(collaborators.checkRunner)) {}

void MonitoringLoop::start() {
    if (isMonitoring_) return;
    isMonitoring_ = true;
    model_.reloadAfterFailure();
    startLoop(CheckTrigger::start, {}, {});
    model_.announceChange();
}

void MonitoringLoop::stop() {
    if (const TaskHandle<> loop = std::exchange(loopTask_, {})) loop.cancel();
    ++manualCheckGeneration_;
    if (const TaskHandle<> manualCheck = std::exchange(manualCheckTask_, {})) manualCheck.cancel();
    cycles_.abandon();
    isMonitoring_ = false;
    model_.announceChange();
}

void MonitoringLoop::checkNow() {
    if (!acceptsCheckNow()) return;
    model_.reloadAfterFailure();
    ++manualCheckGeneration_;
    manualCheckTask_ = tasks_.spawn(mainExecutor_, runManualCheck(self_.reference(), manualCheckGeneration_));
    model_.announceChange();
}

void MonitoringLoop::restart() {
    const bool wasMonitoring = isMonitoring_;
    const TaskHandle<> earlierLoop = std::exchange(loopTask_, {});
    const TaskHandle<> earlierManualCheck = std::exchange(manualCheckTask_, {});
    if (earlierLoop) earlierLoop.cancel();
    if (earlierManualCheck) earlierManualCheck.cancel();
    ++manualCheckGeneration_;
    cycles_.abandon();
    model_.reload();
    isMonitoring_ = wasMonitoring;
    if (wasMonitoring) startLoop(CheckTrigger::restart, earlierLoop, earlierManualCheck);
    model_.announceChange();
}

void MonitoringLoop::startLoop(CheckTrigger first, TaskHandle<> earlierLoop, TaskHandle<> earlierManualCheck) {
    loopTask_ = tasks_.spawn(
        mainExecutor_, run(self_.reference(), first, std::move(earlierLoop), std::move(earlierManualCheck)));
}

bool MonitoringLoop::goesOn(const Reference& self, const TaskContext& context) {
    const MonitoringLoop* const loop = self.get();
    return loop && !context.isCancelled() && loop->isMonitoring_;
}

Task<> MonitoringLoop::run(
    Reference self, CheckTrigger first, TaskHandle<> earlierLoop, TaskHandle<> earlierManualCheck) {
    const TaskContext context = co_await currentContext();
    // The cancelled loop is seen out first: two of them never overlap.
    if (earlierLoop) co_await earlierLoop.join();
    if (earlierManualCheck) co_await earlierManualCheck.join();
    if (!goesOn(self, context)) co_return;
    Task<> loaded = self.get()->model_.loaded();
    co_await std::move(loaded);
    if (!goesOn(self, context)) co_return;
    co_await runCycle(self, first);

    while (goesOn(self, context)) {
        // Counted from the end of the cycle: no catching up, and the interval is read afresh.
        Clock& clock = self.get()->clock_;
        const Instant wake = saturatingAfter(clock.now(), self.get()->model_.intervalSeconds());
        const SleepResult slept = co_await sleepUntil(clock, wake);
        if (slept == SleepResult::Cancelled || !goesOn(self, context)) co_return;
        self.get()->model_.reloadAfterFailure();
        co_await runCycle(self, CheckTrigger::scheduled);
    }
}

Task<> MonitoringLoop::runManualCheck(Reference self, std::uint64_t generation) {
    co_await runCycle(self, CheckTrigger::manual);
    MonitoringLoop* const loop = self.get();
    if (!loop || loop->manualCheckGeneration_ != generation) co_return;
    loop->manualCheckTask_.reset();
    loop->model_.announceChange();
}

Task<> MonitoringLoop::runCycle(Reference self, CheckTrigger trigger) {
    const MonitoringLoop* const loop = self.get();
    if (!loop) co_return;
    Task<> cycle = loop->cycles_.run(trigger);
    co_await std::move(cycle);
}

} // namespace kestrin
