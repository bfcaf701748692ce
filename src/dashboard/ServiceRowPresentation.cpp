#include "dashboard/ServiceRowPresentation.h"

#include "dashboard/CheckTexts.h"
#include "dashboard/ForeignText.h"
#include "dashboard/ServiceStateLook.h"
#include "text/Isolation.h"
#include "text/Timestamp.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <utility>

namespace kestrin {

namespace {

using Records = std::deque<ProviderCheckRecord>;

constexpr std::size_t shownReports = 24;

StatusBlock blockOf(const ProviderCheckRecord& record, const LocaleFormats& formats) {
    std::string details = dateAndTimeText(record.timestamp, formats);
    details.append("\n").append(title(record.state));
    if (!record.summary.empty()) details += "\n" + shownSummary(record.summary);
    if (record.elapsedMS) details += "\n" + formats.duration(*record.elapsedMS);
    return {.color = lookOf(record.state).color,
        .isOperational = record.state == ProviderState::operational,
        .details = std::move(details)};
}

std::string reportsText(Records::const_iterator first, Records::const_iterator last, const LocaleFormats& formats) {
    const auto count = [&](ProviderState state) {
        return formats.integer(std::count_if(
            first, last, [state](const ProviderCheckRecord& record) { return record.state == state; }));
    };
    return "Last " + formats.integer(last - first) + " reports: " + count(ProviderState::operational) +
           " operational, " + count(ProviderState::degraded) + " degraded, " + count(ProviderState::outage) +
           " outage, " + count(ProviderState::maintenance) + " maintenance, " + count(ProviderState::unknown) +
           " unknown";
}

bool showsAnotherFormat(const ProviderCheckRecord& record) {
    return record.state == ProviderState::unknown &&
           (record.failureCategory == ProviderFailureCategory::unsupportedFormat ||
               record.failureCategory == ProviderFailureCategory::changedSchema ||
               record.failureCategory == ProviderFailureCategory::malformed);
}

std::optional<std::string> failureOf(const ProviderSnapshot& snapshot) {
    const Records& records = snapshot.history.recentChecks;
    if (records.empty() || records.back().state != ProviderState::unknown) return std::nullopt;
    if (records.back().failureCategory == ProviderFailureCategory::unsafeDestination)
        return "This status source is no longer an eligible public HTTPS destination.";
    // One odd reply alone does not ask the user to add the source again.
    if (snapshot.provider.source == ProviderSource::custom && records.size() >= 2 &&
        std::all_of(records.end() - 2, records.end(), showsAnotherFormat))
        return "Status format changed. Remove and add this source again after updating Kestrin.";
    return "Couldn’t refresh this status service. Its current status is Unknown.";
}

std::string lastCheckedText(const Records& records, const LocaleFormats& formats) {
    if (records.empty()) return "Not checked";
    const ProviderCheckRecord& last = records.back();
    const auto when = parseTimestamp(last.timestamp);
    std::string text =
        "Checked " + (when ? formats.time(*when) : isolatedInSentence(shownTimestamp(last.timestamp)));
    if (last.elapsedMS) text += " · " + formats.duration(*last.elapsedMS);
    return text;
}

void addHistory(ServiceRowContent& row, const Records& records, const LocaleFormats& formats) {
    if (records.empty()) {
        row.noHistory = "Run Check now to fetch published status";
        return;
    }
    const auto first = records.end() - static_cast<std::ptrdiff_t>(std::min(records.size(), shownReports));
    for (auto record = first; record != records.end(); ++record)
        row.history.push_back(blockOf(*record, formats));
    row.historyTitle = "Recent published status history";
    row.historyAccessibleLabel = reportsText(first, records.end(), formats);
}

} // namespace

ServiceRowContent serviceRow(const ProviderSnapshot& snapshot, const LocaleFormats& formats) {
    const Records& records = snapshot.history.recentChecks;
    const ProviderState state = currentState(snapshot);
    const ServiceStateLook look = lookOf(state);
    ServiceRowContent row;
    row.id = snapshot.provider.id;
    row.symbol = look.symbol;
    row.color = look.color;
    row.name = shownName(snapshot.provider.name);
    row.state = title(state);
    row.summary = records.empty() ? "No status recorded yet" : shownSummary(records.back().summary);
    addHistory(row, records, formats);
    row.failure = failureOf(snapshot);
    row.lastChecked = lastCheckedText(records, formats);
    row.linkText =
        snapshot.provider.source == ProviderSource::bundledOfficial ? "Official status" : "Added status service";
    row.linkSymbol = "arrow.up.right.square";
    row.linkURL = snapshot.provider.publicStatusURL.text;
    return row;
}

} // namespace kestrin
