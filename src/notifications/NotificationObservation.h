#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"
#include "notifications/NotificationTargetKey.h"

#include <string>
#include <variant>

namespace kestrin {

struct WebsiteOutcome {
    bool up = false;
    bool operator==(const WebsiteOutcome&) const = default;
};

struct ProviderOutcome {
    ProviderState state = ProviderState::unknown;
    bool operator==(const ProviderOutcome&) const = default;
};

using NotificationObservationOutcome = std::variant<WebsiteOutcome, ProviderOutcome>;

/// What an automatic check saw of one target. Only `target` and `outcome` steer a decision.
struct NotificationObservation {
    NotificationTargetKey target;
    std::string recordID; ///< the target's id, a hyphen, the record's time stamp
    std::string timestamp;
    NotificationObservationOutcome outcome;

    bool operator==(const NotificationObservation&) const = default;
};

NotificationObservation observationOf(const CheckRecord& record);
NotificationObservation observationOf(const ProviderCheckRecord& record);

} // namespace kestrin
