#include "dashboard/DashboardContent.h"

#include "monitoring/MonitoredTargets.h"
#include "text/Shortening.h"
#include "text/Timestamp.h"

#include <utility>

namespace kestrin {

namespace {

// Both texts may come from a file that somebody else wrote.
constexpr std::size_t longestResult = 400;
constexpr std::size_t longestMoment = 40;

std::pair<WebsiteRow::State, const char*> stateOf(const SiteSnapshot& snapshot) {
    if (!snapshot.site.enabled) return {WebsiteRow::State::Disabled, "DISABLED"};
    if (snapshot.history.recentChecks.empty()) return {WebsiteRow::State::NoData, "NO DATA"};
    if (snapshot.history.recentChecks.back().up) return {WebsiteRow::State::Up, "UP"};
    return {WebsiteRow::State::Down, "DOWN"};
}

std::string outcomeText(const CheckRecord& record) {
    if (record.httpStatus) return "HTTP " + std::to_string(*record.httpStatus);
    return shortenedForDisplay(record.error.value_or("No response"), longestResult);
}

std::string momentText(const CheckRecord& record, const LocaleFormats& formats) {
    const auto when = parseTimestamp(record.timestamp);
    std::string text = when ? formats.time(*when) : shortenedForDisplay(record.timestamp, longestMoment);
    if (record.elapsedMS) text += " · " + formats.duration(*record.elapsedMS);
    return text;
}

std::optional<DashboardPanel> panelOf(const AppModel& model) {
    // Only the very first load shows itself; a later one leaves the last content up.
    if (model.isLoading() && !model.lastLoadedAt()) return DashboardPanel{"Loading monitor history…", ""};
    if (model.loadError()) return DashboardPanel{"Couldn’t Read Monitor Data", *model.loadError()};
    if (model.visibleSnapshots().empty())
        return DashboardPanel{
            "Add your first website", "Write your websites into “sites.json”. Nothing runs until you press Start."};
    return std::nullopt;
}

bool hasSomethingToCheck(const AppModel& model) {
    return model.configuration() && !monitoredSites(*model.configuration()).empty();
}

} // namespace

WebsiteRow websiteRow(const SiteSnapshot& snapshot, const LocaleFormats& formats) {
    const auto [state, text] = stateOf(snapshot);
    WebsiteRow row;
    row.name = snapshot.site.name;
    row.state = state;
    row.stateText = text;
    row.lastResult = "No checks";
    if (snapshot.history.recentChecks.empty()) return row;
    const CheckRecord& last = snapshot.history.recentChecks.back();
    row.lastResult = outcomeText(last);
    row.lastChecked = momentText(last, formats);
    return row;
}

DashboardContent dashboardContent(const AppModel& model, const LocaleFormats& formats) {
    DashboardContent content;
    content.title = "Kestrin";
    content.subtitle = model.isMonitoring() ? "Monitoring active" : "Monitoring paused";
    content.panel = panelOf(model);
    if (model.configurationIssue()) content.notices.push_back(*model.configurationIssue());
    if (model.operationError()) content.notices.push_back(*model.operationError());
    if (model.customProviderIssue()) content.notices.push_back(*model.customProviderIssue());
    if (!content.panel)
        for (const SiteSnapshot& snapshot : model.visibleSnapshots())
            content.websites.push_back(websiteRow(snapshot, formats));

    const bool canCheck = hasSomethingToCheck(model);
    content.startStopStops = model.isMonitoring();
    content.startStop = {model.isMonitoring() ? "Stop" : "Start", model.isMonitoring() || canCheck};
    content.checkNow = {model.isChecking() ? "Checking" : "Check now", !model.isChecking() && canCheck};
    content.quit = {"Quit", true};
    return content;
}

} // namespace kestrin
