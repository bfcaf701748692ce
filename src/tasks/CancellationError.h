#pragma once

#include <exception>

namespace kestrin {

/// The caller was cancelled, or what it waited for will never come because the program ends. Nothing is wrong, and
/// the user is not told.
struct CancellationError : std::exception {
    [[nodiscard]] const char* what() const noexcept override { return "Cancelled"; }
};

} // namespace kestrin
