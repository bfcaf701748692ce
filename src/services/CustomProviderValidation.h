#pragma once

#include "model/CustomProviderConfiguration.h"
#include "services/CustomProviderValidating.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrin {

/// The settings offer fewer; a file of another version may hold this many.
inline constexpr std::size_t maximumCustomProviders = 100;

/// The lowest version of the format that fits: 1 knows Statuspage alone, 2 all feed formats. So a version of the
/// program that knows 1 alone is never handed a format that it cannot read.
[[nodiscard]] std::int64_t customProviderSchemaVersion(const std::vector<CustomProviderDefinition>& providers);

/// What every list of added services must meet, whether it was read or is about to be saved: a version that fits,
/// safe and new identifiers, clean names, acceptable pages, and a host that no other service has, be it added or
/// included. Throws `CustomProviderStoreError` for the first thing that is wrong. Any thread; no network.
void validateCustomProviders(const CustomProviderConfiguration& configuration);

/// The same for services of which only the list is known.
class CustomProviderValidation : public CustomProviderValidating {
public:
    void validate(const std::vector<CustomProviderDefinition>& providers) const override;
};

} // namespace kestrin
