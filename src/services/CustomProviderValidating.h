#pragma once

#include "model/CustomProviderConfiguration.h"

#include <vector>

namespace kestrin {

/// Judges the status services that the user added; throws a `MessageError` for the first that is not acceptable.
struct CustomProviderValidating {
    virtual ~CustomProviderValidating() = default;
    virtual void validate(const std::vector<CustomProviderDefinition>& providers) const = 0;
};

} // namespace kestrin
