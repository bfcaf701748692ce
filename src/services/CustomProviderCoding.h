#pragma once

#include "model/CustomProviderConfiguration.h"
#include "json/JSONValue.h"

#include <string_view>

namespace kestrin {

/// The content of "custom-providers.json" as values. Reading takes exactly the keys that writing gives, so that
/// nothing another version knows of is lost by being passed over; the values themselves are not judged. Throws
/// `CustomProviderStoreError`. Any thread.
[[nodiscard]] CustomProviderConfiguration decodeCustomProviders(std::string_view text);
[[nodiscard]] JSONValue encodeCustomProviders(const CustomProviderConfiguration& configuration);

} // namespace kestrin
