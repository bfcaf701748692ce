#include "notifications/InertNotifications.h"

namespace kestrin {

Task<NotificationManagementState> InertNotifications::observe(
    std::vector<NotificationObservation>, NotificationInputs) {
    co_return NotificationManagementState();
}

Task<NotificationManagementState> InertNotifications::refreshState(NotificationInputs) {
    co_return NotificationManagementState();
}

} // namespace kestrin
