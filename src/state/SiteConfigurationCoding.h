#pragma once

#include "model/SiteConfiguration.h"
#include "json/JSONValue.h"

namespace kestrin {

/// The content of "sites.json" as values. Reading ignores unknown keys and throws `JSONError` with the key that is
/// missing or of the wrong type; the values themselves are not judged.
[[nodiscard]] SiteConfiguration decodeSiteConfiguration(const JSONValue& value);
[[nodiscard]] JSONValue encodeSiteConfiguration(const SiteConfiguration& configuration);

} // namespace kestrin
