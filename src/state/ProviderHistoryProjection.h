#pragma once

#include "model/ProviderCheckRecord.h"

#include <cstddef>
#include <deque>

namespace kestrin {

/// What stays in memory of a status service's history file: its last checks, oldest first. A plain value.
struct ProviderHistoryProjection {
    static constexpr std::size_t maximumRecentChecks = 24;

    std::deque<ProviderCheckRecord> recentChecks;

    void append(const ProviderCheckRecord& record);
    void append(ProviderCheckRecord&& record);

    bool operator==(const ProviderHistoryProjection&) const = default;
};

} // namespace kestrin
