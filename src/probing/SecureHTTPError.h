#pragma once

#include "model/MessageError.h"

#include <cstdint>
#include <string>
#include <variant>

namespace kestrin {

/// A request that was refused, or a response that was, by our own rules. The wording of a refused first request is
/// that of a refused redirect, since both are judged alike. Failures of the network are `TransportError`s.
struct SecureHTTPError : MessageError {
    enum class Case { invalidDestination, blockedRedirect, privateDestination, responseTooLarge, nonHTTPResponse };
    /// What the case is about: a destination or a reason, a limit in bytes, or nothing.
    using Payload = std::variant<std::monostate, std::string, std::int64_t>;

    [[nodiscard]] static SecureHTTPError invalidDestination(std::string destination);
    [[nodiscard]] static SecureHTTPError blockedRedirect(std::string reason);
    [[nodiscard]] static SecureHTTPError privateDestination(std::string host);
    [[nodiscard]] static SecureHTTPError responseTooLarge(std::int64_t limitBytes);
    [[nodiscard]] static SecureHTTPError nonHTTPResponse();

    Case kind;
    Payload payload;

private:
    SecureHTTPError(Case failure, Payload about, std::string text);
};

} // namespace kestrin
