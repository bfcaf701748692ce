#pragma once

#include "notifications/NotificationManagementState.h"
#include "notifications/NotificationObservation.h"
#include "notifications/NotificationPolicyLease.h"
#include "notifications/NotificationTargetContext.h"
#include "tasks/Task.h"

#include <memory>
#include <vector>

namespace kestrin {

/// What the monitor tells with every call: its targets, whether they can be relied on, and its current lease.
struct NotificationInputs {
    std::vector<NotificationTargetContext> contexts;
    NotificationTargetPolicy policy;
    std::shared_ptr<NotificationPolicyLease> lease;
};

/// The monitor's side of notifications. Neither call throws; both give the inert state at once when the lease is no
/// longer valid.
class NotificationObserving {
public:
    virtual ~NotificationObserving() = default;
    /// Decides on what automatic checks saw.
    virtual Task<NotificationManagementState> observe(
        std::vector<NotificationObservation> observations, NotificationInputs inputs) = 0;
    /// Brings what is remembered in line with what was just loaded.
    virtual Task<NotificationManagementState> refreshState(NotificationInputs inputs) = 0;
};

} // namespace kestrin
