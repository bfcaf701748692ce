#include "probing/SecureHTTPError.h"

#include <utility>

namespace kestrin {

SecureHTTPError::SecureHTTPError(Case failure, Payload about, std::string text)
    : MessageError(std::move(text)), kind(failure), payload(std::move(about)) {}

SecureHTTPError SecureHTTPError::invalidDestination(std::string destination) {
    std::string text = "Invalid or disallowed destination: " + destination;
    return {Case::invalidDestination, std::move(destination), std::move(text)};
}

SecureHTTPError SecureHTTPError::blockedRedirect(std::string reason) {
    std::string text = "Redirect blocked: " + reason;
    return {Case::blockedRedirect, std::move(reason), std::move(text)};
}

SecureHTTPError SecureHTTPError::privateDestination(std::string host) {
    std::string text = "Private or reserved network destination blocked: " + host;
    return {Case::privateDestination, std::move(host), std::move(text)};
}

SecureHTTPError SecureHTTPError::responseTooLarge(std::int64_t limitBytes) {
    return {Case::responseTooLarge, limitBytes,
        "Response exceeded the " + std::to_string(limitBytes) + "-byte safety limit"};
}

SecureHTTPError SecureHTTPError::nonHTTPResponse() {
    return {Case::nonHTTPResponse, std::monostate(), "Non-HTTP response"};
}

} // namespace kestrin
