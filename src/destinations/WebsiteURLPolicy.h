#pragma once

#include "model/MessageError.h"
#include "model/WebURL.h"

#include <string_view>

namespace kestrin {

/// What the address of a watched website must look like: complete, HTTPS, without credentials, and not private or
/// local by its text. Query, fragment, path and port are free.
struct WebsiteURLPolicy {
    struct ValidationError : MessageError {
        enum class Case { incomplete, httpsRequired, embeddedCredentials, privateDestination };

        explicit ValidationError(Case failure);

        Case kind;
    };
};

/// The parsed URL, or a `WebsiteURLPolicy::ValidationError` with the first failure in the order of its cases. The
/// text is taken as it is: trimming is the caller's work. A host name is accepted unresolved. Any thread.
[[nodiscard]] WebURL validatedWebsiteURL(std::string_view text);

} // namespace kestrin
