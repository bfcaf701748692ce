#pragma once

#include <exception>
#include <string>
#include <utility>

namespace kestrin {

/// An error whose one field is the sentence that the user reads. Each layer derives its own type from it, so that a
/// catch names the layer and a message passes through unchanged.
struct MessageError : std::exception {
    explicit MessageError(std::string text) : message(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return message.c_str(); }

    std::string message;
};

} // namespace kestrin
