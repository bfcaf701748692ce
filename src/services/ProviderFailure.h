#pragma once

#include "model/ProviderState.h"

#include <string>

namespace kestrin {

/// What stopped a request, in one line, and what kind of trouble that is.
struct ProviderFailure {
    std::string description;
    ProviderFailureCategory category = ProviderFailureCategory::unreachable;

    bool operator==(const ProviderFailure&) const = default;
};

/// The exception that is being handled, as a failure. Only inside a catch block.
[[nodiscard]] ProviderFailure currentFailure();

} // namespace kestrin
