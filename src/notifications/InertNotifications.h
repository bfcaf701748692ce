#pragma once

#include "notifications/NotificationObserving.h"

namespace kestrin {

/// A program without alerts: decides nothing, writes nothing and says so with the inert state.
class InertNotifications : public NotificationObserving {
public:
    Task<NotificationManagementState> observe(
        std::vector<NotificationObservation> observations, NotificationInputs inputs) override;
    Task<NotificationManagementState> refreshState(NotificationInputs inputs) override;
};

} // namespace kestrin
