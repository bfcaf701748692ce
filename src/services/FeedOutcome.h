#pragma once

#include "services/ParsedProviderStatus.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// What a feed says about itself, whatever state it tells of. It stands in every outcome.
struct FeedOrigin {
    std::optional<std::string> pageName; ///< as in the feed
    std::optional<std::string> officialUpdatedAt;
};

/// The outcome of a feed that hangs together. A summary of which cleaning leaves nothing becomes the state's title.
[[nodiscard]] ParsedProviderStatus statedOutcome(FeedOrigin origin, ProviderState state, std::string_view summary);

/// The outcome of a feed that cannot be reconciled with itself or with what is known of its format.
[[nodiscard]] ParsedProviderStatus unknownOutcome(FeedOrigin origin);

} // namespace kestrin
