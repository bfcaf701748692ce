#include "dashboard/StatusRow.h"

#include "text/Shortening.h"
#include "text/Timestamp.h"

#include <cstdint>
#include <optional>

namespace kestrin {

namespace {

// These texts may come from a file that somebody else wrote.
constexpr std::size_t longestResult = 400;
constexpr std::size_t longestSummary = 2'000; // which has 160 letters of any script
constexpr std::size_t longestMoment = 40;

const char* stateText(const SiteSnapshot& snapshot) {
    if (!snapshot.site.enabled) return "DISABLED";
    if (snapshot.history.recentChecks.empty()) return "NO DATA";
    return snapshot.history.recentChecks.back().up ? "UP" : "DOWN";
}

std::string resultText(const CheckRecord& record) {
    if (record.httpStatus) return "HTTP " + std::to_string(*record.httpStatus);
    return shortenedForDisplay(record.error.value_or("No response"), longestResult);
}

std::string momentText(
    const std::string& timestamp, std::optional<std::int64_t> elapsedMS, const LocaleFormats& formats) {
    const auto when = parseTimestamp(timestamp);
    std::string text = when ? formats.time(*when) : shortenedForDisplay(timestamp, longestMoment);
    if (elapsedMS) text += " · " + formats.duration(*elapsedMS);
    return text;
}

} // namespace

StatusRow websiteStatusRow(const SiteSnapshot& snapshot, const LocaleFormats& formats) {
    StatusRow row;
    row.name = snapshot.site.name;
    row.stateText = stateText(snapshot);
    row.lastResult = "No checks";
    if (snapshot.history.recentChecks.empty()) return row;
    const CheckRecord& last = snapshot.history.recentChecks.back();
    row.lastResult = resultText(last);
    row.lastChecked = momentText(last.timestamp, last.elapsedMS, formats);
    return row;
}

StatusRow serviceStatusRow(const ProviderSnapshot& snapshot, const LocaleFormats& formats) {
    StatusRow row;
    row.name = snapshot.provider.name;
    row.stateText = title(ProviderState::unknown);
    row.lastResult = "No status recorded yet";
    row.lastChecked = "Not checked";
    if (snapshot.history.recentChecks.empty()) return row;
    const ProviderCheckRecord& last = snapshot.history.recentChecks.back();
    row.stateText = title(last.state);
    row.lastResult = shortenedForDisplay(last.summary, longestSummary);
    row.lastChecked = momentText(last.timestamp, last.elapsedMS, formats);
    return row;
}

} // namespace kestrin
