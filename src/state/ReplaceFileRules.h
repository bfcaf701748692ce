#pragma once

#include <cstdint>
#include <string_view>

namespace kestrin {

/// What differs between the state files that are replaced atomically. `limit` counts bytes with the final line
/// feed; `prefix` begins the name of the temporary file in the state directory.
struct ReplaceFileRules {
    std::int64_t limit;
    std::string_view prefix;
    std::string_view oversizeMessage;
    std::string_view unsafePathMessage;
    std::string_view changedMessage;
};

inline constexpr ReplaceFileRules customProviderFileRules = {262'144, ".custom-providers-",
    "Kestrin refused oversized custom-provider settings.",
    "Kestrin refused an unsafe custom-provider settings path.", "Custom-provider settings changed while saving."};

inline constexpr ReplaceFileRules notificationSettingsFileRules = {65'536, ".notification-settings-",
    "Kestrin refused oversized notification state.", "Kestrin refused an unsafe notification state path.",
    "Notification state changed while saving."};

inline constexpr ReplaceFileRules notificationLedgerFileRules = {262'144, ".notification-ledger-",
    "Kestrin refused oversized notification state.", "Kestrin refused an unsafe notification state path.",
    "Notification state changed while saving."};

} // namespace kestrin
