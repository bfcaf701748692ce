#pragma once

#include <string_view>

namespace kestrin {

/// Whether an identifier may stand in a path: not empty, not "." or "..", without slash, backslash and NUL.
[[nodiscard]] bool isSafeIdentifier(std::string_view id);

/// Throws `StateValidationError` for an identifier that is not safe in a path.
void validateSafeIdentifier(std::string_view id);

} // namespace kestrin
