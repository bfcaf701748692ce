#include "state/SiteHistoryProjection.h"

#include "state/RecentRecords.h"
#include "text/Timestamp.h"

#include <utility>

namespace kestrin {

void SiteHistoryProjection::append(const CheckRecord& record) {
    ++totalCheckCount;
    if (record.up) ++successfulCheckCount;
    appendRecent(recentChecks, record, maximumRecentChecks);

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
