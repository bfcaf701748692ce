#pragma once

#include "notifications/NotificationObservation.h"
#include "notifications/NotificationTargetKey.h"

#include <optional>
#include <string>

namespace kestrin {

/// A target as the monitor knows it at the moment of a call.
struct NotificationTargetContext {
    NotificationTargetKey key;
    std::string displayName;
    bool isEligible = false;                                      ///< enabled and monitored, so it may raise alerts
    std::optional<NotificationObservationOutcome> currentOutcome; ///< the latest known result

    bool operator==(const NotificationTargetContext&) const = default;
};

/// Whether decisions may be taken at all.
struct NotificationTargetPolicy {
    bool hasValidConfiguration = false; ///< a saved website configuration was loaded
    bool targetsAreReadable = false;    ///< the configuration of every target could be read

    bool operator==(const NotificationTargetPolicy&) const = default;
};

} // namespace kestrin
