#include "monitoring/MonitorSimulation.h"

#include <algorithm>

// What must hold whatever happens.

namespace kestrin {

namespace {

template <class Call> bool isWantedNow(const Call& call) {
    return !call.ended && !call.definitions.empty() && !call.isCancelled();
}

} // namespace

void MonitorSimulation::noteRestart() {
    for (std::size_t cycle = 0; cycle < cycles_.size(); ++cycle)
        for (const bool isWanted :
            {isWantedNow(*harness_.checks.siteCalls[cycle]), isWantedNow(*harness_.checks.serviceCalls[cycle])})
            if (isWanted) toBeSeenOut_.insert(cycle);
}

void MonitorSimulation::noteCall() {
    // A cycle asks for websites and then, at once, for services.
    const std::size_t cycle = harness_.checks.siteCalls.size() - 1;
    if (cycles_.size() > cycle) return;
    // A loop that sleeps has not begun this one.
    const bool manual = !harness_.model->isMonitoring() || harness_.clock.timerCount() == 1;
    if (manual) ++manualCycles;
    cycles_.push_back({.epoch = epoch(), .surelyManual = manual});
    for (const std::size_t earlier : toBeSeenOut_)
        if (!harness_.checks.siteCalls[earlier]->ended || !harness_.checks.serviceCalls[earlier]->ended)
            broken("a restarted loop did not see the old one out");
    toBeSeenOut_.clear();
    if (harness_.model->isLoading()) broken("a cycle began on half-loaded state");
    if (!harness_.model->isChecking()) broken("a cycle began without the mark");
}

void MonitorSimulation::noteAppend(const std::string& timestamp) {
    ++appends;
    if (!written_.insert(timestamp).second) broken("a record was written twice");
    Cycle& cycle = cycles_[cycleOfRecord_.at(timestamp)];
    cycle.written = true;
    if (cycle.epoch != epoch()) broken("a record was written under another generation than its cycle's");
}

void MonitorSimulation::noteChange() {
    const NotificationManagementState& state = harness_.model->notificationState();
    if (state == lastState_) return;
    lastState_ = state;
    const auto* named = std::get_if<NotificationsUnavailable>(&state.availability);
    if (!named) return;
    const auto& lease = leaseOfAnswer_.at(named->message);
    if (lease != harness_.model->notificationInputs().lease || !lease->isValid())
        broken("an answer was shown that was given for an older lease");
}

void MonitorSimulation::checkAlways() {
    const AppModel& model = *harness_.model;
    const auto wanted = [](const auto& calls) {
        return std::ranges::count_if(calls, [](const auto& call) { return isWantedNow(*call); });
    };
    if (wanted(harness_.checks.siteCalls) > 1 || wanted(harness_.checks.serviceCalls) > 1)
        broken("two cycles are in flight");
    if (model.isMonitoring() != shouldMonitor_) broken("monitoring is not what the user asked for");
    if (!model.notificationInputs().lease->isValid()) broken("the present lease is invalid");
    for (const auto& call : harness_.notifications.observeCalls)
        stopsOfObserve_.try_emplace(call.get(), stops_);
    checkObservations();
    if (appends != appendsAtLastLook_) checkShownAgainstDisk();
    appendsAtLastLook_ = appends;
}

void MonitorSimulation::checkWhenIdle() {
    const AppModel& model = *harness_.model;
    const auto isOpen = [](const auto& call) { return !call->answer.isGiven(); };
    const bool observing = std::ranges::any_of(harness_.notifications.observeCalls,
        [&](const auto& call) { return isOpen(call) && stopsOfObserve_.at(call.get()) == stops_; });
    if (model.isChecking() != (harness_.checks.wanted() > 0 || observing))
        broken(model.isChecking() ? "the mark of checking is stuck" : "the mark of checking is lost");
    const bool mayLoad =
        harness_.loads.waiting() > 0 || std::ranges::any_of(harness_.notifications.refreshCalls, isOpen);
    if (model.isLoading() && !mayLoad) broken("the mark of loading is stuck");
    // Those that must go on waiting are seen out at the end with everything else.
    const TaskHandle<> waiting = harness_.tasks.spawn(harness_.main, model.loaded());
    harness_.main.runUntilIdle();
    if (waiting.done() == model.isLoading()) broken("the mark of loading and the wait for a load differ");
    if (harness_.clock.timerCount() > (shouldMonitor_ ? 1U : 0U)) broken("there are two loops, or one too many");
}

void MonitorSimulation::checkObservations() {
    const auto& calls = harness_.notifications.observeCalls;
    for (; checkedObserves_ < calls.size(); ++checkedObserves_) {
        if (!calls[checkedObserves_]->leaseWasValid) broken("notifications were told under a stale lease");
        for (const NotificationObservation& observation : calls[checkedObserves_]->observations) {
            ++observations;
            if (cycles_[cycleOfRecord_.at(observation.timestamp)].surelyManual)
                broken("notifications were told what Check now saw");
            if (!written_.contains(observation.timestamp)) broken("notifications were told what was not written");
        }
    }
}

void MonitorSimulation::checkShownAgainstDisk() {
    for (const SiteSnapshot& shown : harness_.model->snapshots())
        if (!touchedByOthers_.contains(shown.site.id) && shown.history != harness_.historyOnDisk(shown.site.id))
            broken("what is shown of " + shown.site.id + " is not what is on disk");
    for (const ProviderSnapshot& shown : harness_.model->providerSnapshots())
        if (shown.history != harness_.serviceHistoryOnDisk(shown.provider.id))
            broken("what is shown of " + shown.provider.id + " is not what is on disk");
}

void MonitorSimulation::settleEverything() {
    const auto answerAll = [this](const auto& calls) {
        bool any = false;
        for (answeringCycle_ = 0; answeringCycle_ < calls.size(); ++answeringCycle_) {
            if (calls[answeringCycle_]->answer.isGiven()) continue;
            calls[answeringCycle_]->answer.give(anyResults(calls[answeringCycle_]->definitions));
            any = true;
        }
        return any;
    };
    bool anything = true;
    while (anything) {
        harness_.notifications.answerEverything();
        harness_.settle();
        anything = answerAll(harness_.checks.siteCalls);
        anything = answerAll(harness_.checks.serviceCalls) || anything;
        checkAlways();
    }
}

void MonitorSimulation::checkAtTheEnd() {
    AppModel& model = *harness_.model;
    const auto atRest = [&](const std::string& when) {
        steps_.push_back(when);
        settleEverything();
        checkWhenIdle();
        if (model.isChecking()) broken("the mark of checking outlived every check");
        if (model.isLoading()) broken("the mark of loading outlived every load");
        if (harness_.checks.inFlight() > 0) broken("a check has not ended");
        if (harness_.clock.timerCount() != (shouldMonitor_ ? 1U : 0U)) broken("the loop is lost, or does not end");
    };
    atRest("everything settles");
    discardedCycles = static_cast<std::size_t>(std::ranges::count(cycles_, false, &Cycle::written));

    harness_.writer.failAppend(0, "");
    harness_.writer.saveFailure.reset();
    harness_.customProviders->loadFailure.reset();
    SiteConfiguration sound = configurationOf({"a", "b", "c", "d"});
    sound.providerStatus.enabled = true;
    harness_.writeSites(sound);
    ++stops_;
    const std::size_t before = cycles_.size();
    model.restartMonitoring();
    atRest("the files are put in order and monitoring is restarted");
    if (cycles_.size() != before + (shouldMonitor_ ? 1 : 0)) broken("a restart did not make just one cycle");
    touchedByOthers_.clear();
    checkShownAgainstDisk();
    if (model.snapshots().size() != 4 || model.loadError()) broken("a sound configuration is not shown");

    harness_.clock.advance(std::chrono::seconds(300));
    atRest("one interval passes");
    if (cycles_.size() != before + (shouldMonitor_ ? 2 : 0)) broken("an interval did not make just one cycle");
    model.checkNow();
    atRest("check now");
    if (cycles_.size() != before + (shouldMonitor_ ? 3 : 1)) broken("check now did not make just one cycle");

    model.reload();
    atRest("reload");
    const auto loaded = model.lastLoadedAt();
    harness_.clock.advance(std::chrono::seconds(1));
    model.refreshIfStateChanged();
    atRest("refresh if changed, and nothing has");
    if (model.lastLoadedAt() != loaded) broken("the model does not know its own files again");
    checkShownAgainstDisk();
}

} // namespace kestrin
