#pragma once

#include "notifications/NotificationTargetContext.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrin {

enum class NotificationAuthorizationState { notDetermined, authorized, denied, unsupported, error };

enum class NotificationWebsiteSensitivity { twoConsecutiveFailures, firstFailure };

/// Whether the user wants alerts of one target.
struct NotificationTargetPreference {
    NotificationTargetKey target;
    bool participates = false;

    bool operator==(const NotificationTargetPreference&) const = default;
};

struct NotificationsUnavailable {
    std::string message;
    bool operator==(const NotificationsUnavailable&) const = default;
};
struct NotificationsInert {
    bool operator==(const NotificationsInert&) const = default;
};
struct NotificationsNotConfigured {
    bool operator==(const NotificationsNotConfigured&) const = default;
};
struct NotificationsAvailable {
    bool operator==(const NotificationsAvailable&) const = default;
};
using NotificationStateAvailability =
    std::variant<NotificationsInert, NotificationsUnavailable, NotificationsNotConfigured, NotificationsAvailable>;

/// What the settings show of notifications. Made by default it is the inert state, which answers a caller whose
/// lease is stale: nothing was looked at and nothing was written.
struct NotificationManagementState {
    NotificationStateAvailability availability = NotificationsInert{};
    NotificationAuthorizationState authorization = NotificationAuthorizationState::unsupported;
    bool masterIntentEnabled = false;
    bool masterEffective = false;
    NotificationWebsiteSensitivity websiteSensitivity = NotificationWebsiteSensitivity::twoConsecutiveFailures;
    std::vector<NotificationTargetPreference> targetPreferences; ///< sorted by target
    std::vector<NotificationTargetContext> targetContexts;       ///< sorted by target
    bool canResetMalformedState = false;

    bool operator==(const NotificationManagementState&) const = default;
};

/// What an operation on the settings of notifications answers.
struct NotificationActionResult {
    NotificationManagementState state;
    std::optional<std::string> message; ///< for the user
};

} // namespace kestrin
