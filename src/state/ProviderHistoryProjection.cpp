#include "state/ProviderHistoryProjection.h"

#include "state/RecentRecords.h"

namespace kestrin {

void ProviderHistoryProjection::append(const ProviderCheckRecord& record) {
    appendRecent(recentChecks, record, maximumRecentChecks);
}

} // namespace kestrin
