#pragma once

#include "model/ProviderState.h"

#include <optional>
#include <string>

namespace kestrin {

/// What one response of a status feed says, whatever the format of the feed. A feed that contradicts itself gives
/// `unknown`: it is never guessed at. Texts that a user reads are cleaned (`cleanFeedText`).
struct ParsedProviderStatus {
    ProviderState state = ProviderState::unknown;
    std::string summary;                          ///< never empty, at most 160 characters
    std::optional<std::string> officialUpdatedAt; ///< the feed's own text: not parsed, not cleaned, of any length
    std::optional<std::string> pageName;          ///< never empty, at most 80 characters

    bool operator==(const ParsedProviderStatus&) const = default;
};

} // namespace kestrin
