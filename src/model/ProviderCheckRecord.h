#pragma once

#include "model/ProviderState.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kestrin {

/// One finished check of a status service: a line of the service's history file.
struct ProviderCheckRecord {
    std::string timestamp; ///< ISO 8601 in UTC at second precision, ending in "Z"
    std::string providerID;
    std::string endpoint;
    std::optional<std::int64_t> httpStatus;
    std::optional<std::int64_t> elapsedMS;
    ProviderState state = ProviderState::unknown;
    std::string summary;
    std::optional<std::string> officialUpdatedAt; ///< the feed's own text, not parsed
    std::optional<std::string> error;
    std::optional<ProviderFailureCategory> failureCategory;

    bool operator==(const ProviderCheckRecord&) const = default;
};

} // namespace kestrin
