#pragma once

#include <string>

namespace kestrin {

/// A new random UUID (version 4) in its upper-case text form.
[[nodiscard]] std::string freshUUID();

} // namespace kestrin
