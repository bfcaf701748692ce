#pragma once

#include <compare>
#include <string>

namespace kestrin {

/// Declared in the order in which targets sort: by the persisted words "provider", "website".
enum class NotificationTargetKind { provider, website };

/// The identity of something that may raise alerts. Sorts by kind, then by the bytes of the id.
struct NotificationTargetKey {
    NotificationTargetKind kind = NotificationTargetKind::website;
    std::string id; ///< the website's or the service's identifier

    auto operator<=>(const NotificationTargetKey&) const = default;
};

} // namespace kestrin
