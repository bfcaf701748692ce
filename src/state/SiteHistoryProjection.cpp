#include "state/SiteHistoryProjection.h"

#include "state/RecentRecords.h"
#include "text/Timestamp.h"

#include <utility>

namespace kestrin {

void SiteHistoryProjection::append(const CheckRecord& record) {
    appendRecent(recentChecks, record, maximumRecentChecks);
    foldLatest();
}

void SiteHistoryProjection::append(CheckRecord&& record) {
    appendRecent(recentChecks, std::move(record), maximumRecentChecks);
    foldLatest();
}

/// What the last of the recent checks does to counters and incidents.
void SiteHistoryProjection::foldLatest() {
    const CheckRecord& record = recentChecks.back();
    ++totalCheckCount;
    if (record.up) ++successfulCheckCount;
    if (!record.up) {
        if (!ongoingIncidentStart) ongoingIncidentStart = record;
        return;
    }
    if (!ongoingIncidentStart) return;
    recentClosedIncidents.insert(
        recentClosedIncidents.begin(), {.started = parseTimestamp(ongoingIncidentStart->timestamp),
                                           .ended = parseTimestamp(record.timestamp),
                                           .startedText = ongoingIncidentStart->timestamp,
                                           .endedText = record.timestamp});
    if (recentClosedIncidents.size() > maximumIncidents) recentClosedIncidents.pop_back();
    ongoingIncidentStart.reset();
}

std::vector<Incident> SiteHistoryProjection::incidents() const {
    std::vector<Incident> shown = recentClosedIncidents;
    if (ongoingIncidentStart)
        shown.insert(shown.begin(), {.started = parseTimestamp(ongoingIncidentStart->timestamp),
                                        .ended = std::nullopt,
                                        .startedText = ongoingIncidentStart->timestamp,
                                        .endedText = std::nullopt});
    if (shown.size() > maximumIncidents) shown.resize(maximumIncidents);
    return shown;
}

} // namespace kestrin
