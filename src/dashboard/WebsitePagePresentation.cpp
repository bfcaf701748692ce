#include "dashboard/WebsitePagePresentation.h"

#include "dashboard/CheckTexts.h"
#include "dashboard/ForeignText.h"
#include "dashboard/ResponseHistoryPresentation.h"
#include "dashboard/WebsiteState.h"
#include "text/Isolation.h"
#include "text/Timestamp.h"

#include <algorithm>
#include <cstddef>

namespace kestrin {

namespace {

constexpr std::size_t shownChecks = 4;
constexpr const char* missing = "—";

std::string lastCheckedText(const SiteSnapshot& snapshot, const LocaleFormats& formats) {
    const auto& checks = snapshot.history.recentChecks;
    const auto when = checks.empty() ? std::nullopt : parseTimestamp(checks.back().timestamp);
    if (!when) return "No checks";
    return (snapshot.site.enabled ? "" : "Last checked ") + formats.time(*when);
}

// A share of checks, not of time, and so it is called sampled.
std::string uptimeText(const SiteHistoryProjection& history, const LocaleFormats& formats) {
    if (history.totalCheckCount < 1) return missing;
    return formats.percentage(
        static_cast<double>(history.successfulCheckCount) / static_cast<double>(history.totalCheckCount));
}

std::string responseText(const SiteHistoryProjection& history, const LocaleFormats& formats) {
    if (history.recentChecks.empty() || !history.recentChecks.back().elapsedMS) return missing;
    return formats.duration(*history.recentChecks.back().elapsedMS);
}

SiteSummaryContent summaryOf(const SiteSnapshot& snapshot, const LocaleFormats& formats) {
    const WebsiteState state = stateOf(snapshot);
    return {.name = shownName(snapshot.site.name),
        .url = shownURL(snapshot.site.url),
        .badge = state.badge,
        .badgeColor = state.color,
        .lastChecked = lastCheckedText(snapshot, formats),
        .metrics = {{{"Sampled uptime", uptimeText(snapshot.history, formats)},
            {"Checks", formats.integer(snapshot.history.totalCheckCount)},
            {"Response", responseText(snapshot.history, formats)}}}};
}

CheckRowContent checkRow(const CheckRecord& check, const LocaleFormats& formats) {
    return {.up = check.up,
        .result = resultText(check),
        .time = timeText(check.timestamp, formats),
        .duration = check.elapsedMS ? formats.duration(*check.elapsedMS) : std::string(),
        .accessibleName = accessibleText(check, formats),
        .details = detailsText(check, formats)};
}

std::string periodText(const Incident& incident, const LocaleFormats& formats) {
    const std::string start = incident.started ? formats.dateAndTime(*incident.started)
                                               : isolatedInSentence(shownTimestamp(incident.startedText));
    if (!incident.ended && !incident.endedText) return "Since " + start;
    const std::string end =
        incident.ended ? formats.time(*incident.ended) : isolatedInSentence(shownTimestamp(*incident.endedText));
    return start + " – " + end;
}

} // namespace

IncidentRowContent incidentRow(const Incident& incident, const LocaleFormats& formats) {
    const bool isOngoing = !incident.ended && !incident.endedText;
    return {.symbol = isOngoing ? "exclamationmark.circle.fill" : "checkmark.circle.fill",
        .color = isOngoing ? StateColor::red : StateColor::green,
        .word = isOngoing ? "Ongoing" : "Recovered",
        .period = periodText(incident, formats)};
}

WebsitePageContent websitePage(
    const SiteSnapshot& snapshot, const std::optional<std::string>& operationError, const LocaleFormats& formats) {
    WebsitePageContent page;
    page.summary = summaryOf(snapshot, formats);
    if (operationError)
        page.operationError =
            NoteContent{"exclamationmark.triangle.fill", StateColor::orange, shownMessage(*operationError)};
    page.chart = responseChart(ResponseHistoryPresentation::of(snapshot.history), formats);

    page.checksTitle = "Recent checks";
    page.noChecks = "No checks recorded yet.";
    const auto& checks = snapshot.history.recentChecks;
    const std::size_t count = std::min(checks.size(), shownChecks);
    for (auto check = checks.rbegin(); page.checks.size() < count; ++check)
        page.checks.push_back(checkRow(*check, formats));

    page.incidentsTitle = "Detected incidents";
    page.noIncidents = {"checkmark.circle", StateColor::secondary, "No failed periods recorded"};
    for (const Incident& incident : snapshot.history.incidents())
        page.incidents.push_back(incidentRow(incident, formats));
    return page;
}

} // namespace kestrin
