#pragma once

#include "model/CheckRecord.h"
#include "state/Incident.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace kestrin {

/// What stays in memory of a website's history file: counters, the last checks and the last incidents. Folding
/// every line in file order and folding each new check give the same value. A plain value; records are taken in the
/// order they come, whatever their time stamps say.
struct SiteHistoryProjection {
    static constexpr std::size_t maximumRecentChecks = 30;
    static constexpr std::size_t maximumIncidents = 3;

    std::int64_t totalCheckCount = 0;
    std::int64_t successfulCheckCount = 0;
    std::deque<CheckRecord> recentChecks;            ///< oldest first
    std::vector<Incident> recentClosedIncidents;     ///< newest first
    std::optional<CheckRecord> ongoingIncidentStart; ///< the first failure of the run that lasts

    void append(const CheckRecord& record);
    void append(CheckRecord&& record);

    /// The incidents to show, newest first: one that lasts, then closed ones, three at most.
    [[nodiscard]] std::vector<Incident> incidents() const;

    bool operator==(const SiteHistoryProjection&) const = default;

private:
    void foldLatest();
};

} // namespace kestrin
