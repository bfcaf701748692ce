#pragma once

#include "model/MessageError.h"
#include "model/WebURL.h"

#include <string_view>

namespace kestrin {

/// What the address of a public status page must look like: as for a website, and besides at most 2,048 bytes, no
/// query, no fragment, and the standard port.
struct CustomProviderURLPolicy {
    struct ValidationError : MessageError {
        enum class Case {
            tooLong,
            incomplete,
            httpsRequired,
            embeddedCredentials,
            queryOrFragment,
            unsupportedPort,
            privateDestination
        };

        explicit ValidationError(Case failure);

        Case kind;
    };
};

/// The parsed URL of the trimmed text, or a `CustomProviderURLPolicy::ValidationError` with the first failure in
/// the order of its cases. A host name is accepted unresolved. Any thread.
[[nodiscard]] WebURL validatedCustomProviderURL(std::string_view text);

} // namespace kestrin
