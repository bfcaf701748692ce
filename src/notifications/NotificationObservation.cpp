#include "notifications/NotificationObservation.h"

namespace kestrin {

NotificationObservation observationOf(const CheckRecord& record) {
    return {.target = {NotificationTargetKind::website, record.siteID},
        .recordID = record.siteID + "-" + record.timestamp,
        .timestamp = record.timestamp,
        .outcome = WebsiteOutcome{record.up}};
}

NotificationObservation observationOf(const ProviderCheckRecord& record) {
    return {.target = {NotificationTargetKind::provider, record.providerID},
        .recordID = record.providerID + "-" + record.timestamp,
        .timestamp = record.timestamp,
        .outcome = ProviderOutcome{record.state}};
}

} // namespace kestrin
