#pragma once

#include "model/ProviderDefinition.h"
#include "services/ParsedProviderStatus.h"
#include "services/ProviderCheckDependencies.h"
#include "services/ProviderFailure.h"

#include <cstdint>
#include <optional>

namespace kestrin {

/// How far one request for a status feed came. The check and the preview ask alike and find words of their own.
struct StatusFeedAnswer {
    enum class Kind {
        Failed,           ///< there is no response; `failure` says why
        OtherStatus,      ///< an HTTP status outside 200 to 299
        OtherContentType, ///< no JSON media type
        Unrecognized,     ///< JSON, but not this feed
        Malformed,        ///< not readable as JSON of this feed
        UnknownState,     ///< the feed, but its content is unknown or contradicts itself; `status` has the rest
        KnownState,       ///< `status` says it
    };

    Kind kind = Kind::Failed;
    std::optional<std::int64_t> httpStatus; ///< of the response, if there was one
    ProviderFailure failure;
    ParsedProviderStatus status;

    bool operator==(const StatusFeedAnswer&) const = default;
};

/// Asks one endpoint and lets the adapter read what comes. Throws a `CancellationError` and nothing else.
[[nodiscard]] Task<StatusFeedAnswer> askStatusFeed(ProviderCheckDependencies dependencies, HTTPRequest request,
    SecureRequestPolicy policy, ProviderAdapterIdentity adapter);

} // namespace kestrin
