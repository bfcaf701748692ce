#pragma once

#include "model/CustomProviderConfiguration.h"
#include "model/SiteConfiguration.h"
#include "services/CustomProviderValidating.h"

#include <optional>
#include <vector>

namespace kestrin {

/// The gate for any configuration that is about to become current. Throws `StateValidationError`, or what
/// `customValidation` throws, for the first test that fails. `customProviders` is absent when they are not known;
/// when they could not be read, `customProviderReadFailed` lets status services stay on without a selection.
void validateConfiguration(const SiteConfiguration& configuration,
    const std::optional<std::vector<CustomProviderDefinition>>& customProviders, bool customProviderReadFailed,
    bool requireSupportedInterval, const CustomProviderValidating& customValidation);

} // namespace kestrin
