#pragma once

#include "model/SiteConfiguration.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace kestrin {

/// The check intervals that the settings offer. A file may hold any other.
inline constexpr std::array<std::int64_t, 5> supportedIntervalSeconds = {300, 600, 900, 1800, 3600};

/// Throws `StateValidationError` for an identifier that a new or changed website may not have.
void validateNewSiteID(std::string_view id);

/// Throws `StateValidationError` for the first thing that is wrong with a website: its identifier, an empty name,
/// an incomplete URL, or a host that is local or a numeric address that is not public. Resolves no name.
void validateSiteDefinition(const SiteDefinition& site);

} // namespace kestrin
