#pragma once

#include "model/WebURL.h"

#include <string>

namespace kestrin {

/// The scheme in the form in which it is compared, ASCII lower case.
[[nodiscard]] std::string lowercaseScheme(const WebURL& url);

} // namespace kestrin
