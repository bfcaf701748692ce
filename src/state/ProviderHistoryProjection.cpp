#include "state/ProviderHistoryProjection.h"

#include "state/RecentRecords.h"

#include <utility>

namespace kestrin {

void ProviderHistoryProjection::append(const ProviderCheckRecord& record) {
    appendRecent(recentChecks, record, maximumRecentChecks);
}

void ProviderHistoryProjection::append(ProviderCheckRecord&& record) {
    appendRecent(recentChecks, std::move(record), maximumRecentChecks);
}

} // namespace kestrin
