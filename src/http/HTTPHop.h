#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

struct HTTPHeader {
    std::string name;
    std::string value;

    bool operator==(const HTTPHeader&) const = default;
};

/// One GET to one judged destination. Nothing in it is parsed again: the host is sent as it stands here, and no
/// address but the listed ones is contacted.
struct HTTPHopRequest {
    std::string scheme; ///< "https"; every other one is refused
    std::string host;   ///< ASCII as judged, an IPv6 literal without its brackets
    std::uint16_t port = 443;
    std::string target; ///< path and query as they go over the wire: printable ASCII from its "/" on
    std::vector<HTTPHeader> headers;
    std::vector<std::string> addresses;      ///< numeric, all judged; empty refuses the request
    std::vector<std::string> proxyAddresses; ///< numeric; where the proxy is, if the request goes through one
    bool headersOnly = false;                ///< end at the response's head, whatever body is declared
    std::int64_t maximumBodyBytes = 0;       ///< exactly so many bytes still pass; not looked at with `headersOnly`
    std::chrono::milliseconds inactivityTimeout{0}; ///< longest wait without a sign of the server
    std::chrono::milliseconds totalTimeout{0};      ///< what is left for the whole resource, connecting included
};

/// The final response of one hop; interim responses (1xx) are passed over. The body of a redirect that names its
/// target is never read.
struct HTTPHopResponse {
    std::int64_t status = 0;
    std::optional<std::string> contentType; ///< the raw header
    std::vector<std::string> locations;     ///< every `Location` in order, trimmed, empty ones included
    std::string body;

    /// 301, 302, 303, 307 or 308 with a `Location` that is not empty.
    [[nodiscard]] bool isRedirect() const;

    bool operator==(const HTTPHopResponse&) const = default;
};

/// Why a hop gave no response. Partial data is dropped.
struct HTTPHopError {
    enum class Kind {
        Transport,          ///< `message` is the sentence that the user reads
        Cancelled,          ///< the stop token was triggered first
        ResponseTooLarge,   ///< declared or received more than `maximumBodyBytes`
        NonHTTPResponse,    ///< the server spoke, but no HTTP
        RefusedDestination, ///< the request cannot be sent exactly as judged, so nothing was sent
    };

    Kind kind = Kind::Transport;
    std::string message; ///< empty for every kind but `Transport`

    bool operator==(const HTTPHopError&) const = default;
};

} // namespace kestrin
