#pragma once

#include "model/MessageError.h"

namespace kestrin {

/// A response that cannot be read as the feed it was taken for. Callers decide by `kind` and have words of their
/// own for the user; the message is plain and is the same for every response of a kind.
struct ProviderAdapterParseError : MessageError {
    enum class Kind {
        unrecognized, ///< JSON, but not this feed; or there is no such adapter
        malformed,    ///< no JSON, or a known key has the wrong type
    };

    explicit ProviderAdapterParseError(Kind failure)
        : MessageError(failure == Kind::unrecognized ? "The response is not the expected status feed."
                                                     : "The response is not a readable status feed."),
          kind(failure) {}

    Kind kind;
};

} // namespace kestrin
