#include "state/SafeIdentifier.h"

#include "state/StateErrors.h"

namespace kestrin {

bool isSafeIdentifier(std::string_view id) {
    constexpr std::string_view forbidden("/\\\0", 3);
    return !id.empty() && id != "." && id != ".." && id.find_first_of(forbidden) == std::string_view::npos;
}

void validateSafeIdentifier(std::string_view id) {
    if (!isSafeIdentifier(id)) throw StateValidationError("Unsafe website identifier was refused.");
}

} // namespace kestrin
