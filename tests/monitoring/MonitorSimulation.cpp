#include "monitoring/MonitorSimulation.h"

#include <algorithm>
#include <array>

namespace kestrin {

namespace {

using std::chrono::seconds;

const std::array<const char*, 4> siteIDs = {"a", "b", "c", "d"};

/// The calls of one kind that nobody has answered.
template <class Call> std::vector<std::size_t> unanswered(const std::vector<std::shared_ptr<Call>>& calls) {
    std::vector<std::size_t> open;
    for (std::size_t index = 0; index < calls.size(); ++index)
        if (!calls[index]->answer.isGiven()) open.push_back(index);
    return open;
}

} // namespace

MonitorSimulation::MonitorSimulation(std::uint32_t seed) : random_(seed) {
    steps_.push_back("seed " + std::to_string(seed));
    harness_.checks.onCall = [this] { noteCall(); };
    harness_.writer.onAppend = [this](const std::string& timestamp) { noteAppend(timestamp); };
    if (below(4) > 0) harness_.writeSites(anyConfiguration());
    harness_.create();
    listening_ = harness_.model->onChange([this] { noteChange(); });
}

std::string MonitorSimulation::run(int steps) {
    for (int count = 0; count < steps && broken_.empty(); ++count) {
        step();
        checkAlways();
        if (harness_.main.waiting() == 0) checkWhenIdle();
    }
    if (broken_.empty()) checkAtTheEnd();
    // What the harness runs while it winds up is no part of the course of events.
    harness_.checks.onCall = nullptr;
    harness_.writer.onAppend = nullptr;
    listening_.end();
    if (broken_.empty()) return {};
    std::string report;
    for (const std::string& rule : broken_)
        report += "broken: " + rule + "\n";
    for (const std::string& step : steps_)
        report += "  " + step + "\n";
    return report;
}

MonitorSimulation::Epoch MonitorSimulation::epoch() const {
    return {harness_.model->notificationInputs().lease, stops_};
}

void MonitorSimulation::broken(const std::string& rule) {
    broken_.push_back(rule);
}

// Steps.

void MonitorSimulation::step() {
    const std::uint32_t who = below(100);
    if (who < 25)
        actAsUser();
    else if (who < 35)
        actAsDisk();
    else if (who < 50)
        actAsNetwork();
    else if (who < 60)
        actAsNotifications();
    else
        goOn();
}

void MonitorSimulation::actAsUser() {
    AppModel& model = *harness_.model;
    switch (below(9)) {
    case 0:
    case 1:
        steps_.push_back("start");
        if (!shouldMonitor_) toBeSeenOut_.clear();
        model.startMonitoring();
        shouldMonitor_ = true;
        break;
    case 2:
        steps_.push_back("stop");
        ++stops_;
        model.stopMonitoring();
        shouldMonitor_ = false;
        break;
    case 3:
    case 4:
        steps_.push_back("check now");
        toBeSeenOut_.clear();
        model.checkNow();
        break;
    case 5:
        steps_.push_back("restart");
        noteRestart();
        ++stops_;
        model.restartMonitoring();
        break;
    case 6:
        steps_.push_back("reload");
        model.reload();
        break;
    case 7: {
        const std::string id = anySite();
        steps_.push_back("select " + id);
        model.selectSite(id);
        break;
    }
    default:
        steps_.push_back("refresh if changed");
        model.refreshIfStateChanged();
    }
}

void MonitorSimulation::actAsDisk() {
    switch (below(8)) {
    case 0:
    case 1:
    case 2:
        steps_.push_back("somebody edits sites.json");
        harness_.writeSites(anyConfiguration());
        break;
    case 3:
        steps_.push_back("somebody damages sites.json");
        harness_.writeSitesText("nonsense");
        break;
    case 4:
        steps_.push_back("somebody removes sites.json");
        harness_.removeSites();
        break;
    case 5: {
        if (!std::filesystem::exists(harness_.sitesPath())) break;
        const std::string id = anySite();
        steps_.push_back("somebody appends to " + id);
        touchedByOthers_.insert(id);
        (void)harness_.files.appendCheck(checkOf(id, below(2) == 0));
        break;
    }
    case 6: {
        const std::size_t which = 1 + below(4);
        steps_.push_back("append " + std::to_string(which) + " from now fails");
        harness_.writer.failAppend(which, "Disk gone");
        break;
    }
    default:
        steps_.push_back("the added services and the storing of a choice fail, or work again");
        if (below(2) == 0)
            harness_.customProviders->loadFailure.emplace("The file is damaged.");
        else
            harness_.customProviders->loadFailure.reset();
        if (below(2) == 0)
            harness_.writer.saveFailure.emplace("Disk gone");
        else
            harness_.writer.saveFailure.reset();
    }
}

void MonitorSimulation::actAsNetwork() {
    if (below(8) == 0) {
        const bool early = below(2) == 0;
        steps_.push_back(early ? "cancelled checks end early from now on" : "cancelled checks go on from now on");
        harness_.checks.uponCancellation = early ? ScriptedCheckRunner::UponCancellation::EndsEarly
                                                 : ScriptedCheckRunner::UponCancellation::KeepsWaiting;
    } else if (below(2) == 0) {
        answerOne(harness_.checks.siteCalls);
    } else {
        answerOne(harness_.checks.serviceCalls);
    }
}

template <class Calls> void MonitorSimulation::answerOne(Calls& calls) {
    const auto open = unanswered(calls);
    if (open.empty()) return;
    answeringCycle_ = open[below(static_cast<std::uint32_t>(open.size()))];
    steps_.push_back("cycle " + std::to_string(answeringCycle_) + " gets results");
    calls[answeringCycle_]->answer.give(anyResults(calls[answeringCycle_]->definitions));
}

std::vector<CheckRecord> MonitorSimulation::anyResults(const std::vector<SiteDefinition>& sites) {
    std::vector<CheckRecord> records;
    for (const SiteDefinition& site : sites)
        if (below(10) > 0) records.push_back(checkOf(site.id, below(3) > 0));
    if (below(12) == 0) records.insert(records.begin(), checkOf("deleted"));
    for (const CheckRecord& record : records)
        remember(record.timestamp, answeringCycle_);
    return records;
}

std::vector<ProviderCheckRecord> MonitorSimulation::anyResults(const std::vector<ProviderDefinition>& services) {
    std::vector<ProviderCheckRecord> records = serviceChecksOf(services);
    if (below(6) == 0) records.push_back(serviceCheckOf("deselected"));
    for (const ProviderCheckRecord& record : records)
        remember(record.timestamp, answeringCycle_);
    return records;
}

void MonitorSimulation::actAsNotifications() {
    FakeNotifications& notifications = harness_.notifications;
    if (below(3) == 0) {
        notifications.holdsObserve = below(2) == 0;
        notifications.holdsRefresh = below(3) == 0;
        steps_.push_back(std::string("notifications hold back") + (notifications.holdsObserve ? " observe" : "") +
                         (notifications.holdsRefresh ? " refresh" : ""));
        return;
    }
    auto& calls = below(2) == 0 ? notifications.observeCalls : notifications.refreshCalls;
    const auto open = unanswered(calls);
    if (open.empty()) return;
    const auto& call = calls[open[below(static_cast<std::uint32_t>(open.size()))]];
    const std::string name = "answer " + std::to_string(++answers_);
    steps_.push_back("notifications give " + name);
    leaseOfAnswer_[name] = call->inputs.lease;
    call->answer.give(FakeNotifications::stateNamed(name));
}

void MonitorSimulation::goOn() {
    switch (below(8)) {
    case 0:
    case 1:
        steps_.push_back("the main thread runs one piece");
        harness_.main.runOne();
        break;
    case 2:
    case 3:
    case 4:
        steps_.push_back("the main thread runs until it is idle");
        harness_.main.runUntilIdle();
        break;
    case 5:
    case 6:
        if (const std::size_t waiting = harness_.loads.waiting()) {
            const std::size_t which = below(static_cast<std::uint32_t>(waiting));
            steps_.push_back("the pool finishes " + std::to_string(which));
            harness_.loads.finish(which);
        }
        break;
    default: {
        const seconds duration(below(2) == 0 ? 1 + below(90) : 300);
        steps_.push_back(std::to_string(duration.count()) + " seconds pass");
        harness_.clock.advance(duration);
    }
    }
}

SiteConfiguration MonitorSimulation::anyConfiguration() {
    SiteConfiguration configuration;
    for (const char* id : siteIDs) {
        if (below(3) == 0) continue;
        configuration.sites.push_back(siteNamed(id));
        configuration.sites.back().enabled = below(5) > 0;
        if (below(8) == 0) configuration.sites.back().url = "http://" + std::string(id) + ".example.com/";
    }
    if (below(2) == 0) configuration.activeSiteID = anySite();
    configuration.intervalSeconds = std::array<std::int64_t, 4>{30, 60, 300, INT64_MAX}[below(4)];
    configuration.providerStatus.enabled = below(2) == 0;
    if (below(3) == 0) configuration.providerStatus.providerIDs = {"claude"};
    return configuration;
}

std::string MonitorSimulation::anySite() {
    return siteIDs[below(siteIDs.size())];
}

} // namespace kestrin
