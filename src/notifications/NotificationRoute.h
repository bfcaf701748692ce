#pragma once

#include "notifications/NotificationTargetKey.h"

namespace kestrin {

/// Where a click on an alert leads: to the target that the alert is about. It comes from outside, so the target may
/// be gone by now.
struct NotificationRoute {
    static constexpr int currentSchemaVersion = 1;

    int schemaVersion = currentSchemaVersion; ///< a route of any other version leads nowhere
    NotificationTargetKey target;

    bool operator==(const NotificationRoute&) const = default;
};

} // namespace kestrin
