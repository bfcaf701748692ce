#pragma once

#include <optional>
#include <string_view>

namespace kestrin {

/// The published state of a status service. `unknown`: the report could not be interpreted; never that it is down.
enum class ProviderState { operational, degraded, outage, maintenance, unknown };

/// Why a check of a service gave no trustworthy state.
enum class ProviderFailureCategory {
    unreachable,       ///< the transport failed, or the answer was not HTTP
    unsafeDestination, ///< the destination, a redirect or the resolved addresses were refused
    unsupportedFormat, ///< no JSON media type, or no adapter applies
    changedSchema,     ///< JSON, but not the expected feed
    unavailable,       ///< an HTTP status outside 200 to 299
    malformed,         ///< the JSON decoder failed, or the response was too large
};

/// The strings that are persisted; a string that is none of them gives no value.
std::string_view persistedName(ProviderState state);
std::string_view persistedName(ProviderFailureCategory category);
std::optional<ProviderState> providerStateNamed(std::string_view name);
std::optional<ProviderFailureCategory> providerFailureCategoryNamed(std::string_view name);

/// The word that the user reads.
std::string_view title(ProviderState state);

} // namespace kestrin
