#pragma once

#include "http/HTTPTransport.h"
#include "model/WebURL.h"
#include "probing/BackgroundResolver.h"
#include "probing/SecureRequestPolicy.h"
#include "tasks/BlockingPool.h"
#include "tasks/Clock.h"
#include "tasks/Executor.h"
#include "tasks/Task.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// A GET. The time-out is the longest wait without a sign of the server; the whole, redirects included, may take
/// two seconds more.
struct HTTPRequest {
    std::optional<WebURL> url;
    std::vector<HTTPHeader> headers;
    std::chrono::milliseconds timeout{0};
};

struct FreshHTTPResponse {
    std::string data; ///< empty for a policy of headers only
    std::int64_t statusCode = 0;
    std::optional<std::string> contentType; ///< the raw header

    bool operator==(const FreshHTTPResponse&) const = default;
};

/// What the client works with. All of it outlives every call.
struct FreshHTTPServices {
    Executor& owner; ///< serial; everything between the blocking parts runs here
    Clock& clock;
    BlockingPool& pool; ///< for transfers
    HTTPTransport& transport;
    BackgroundResolver resolver;
};

/// The only way by which monitoring requests are made. Nothing is shared between calls: no connection, cookie,
/// cache or credential. Every destination, also that of a redirect, is judged by the policy and by the addresses of
/// a fresh name resolution, and only those addresses are contacted. First requests are judged one call at a time,
/// since the client is one serial owner; transfers run in parallel. A handle to shared state: copies take turns
/// with one another. Any thread.
class FreshHTTPClient {
public:
    explicit FreshHTTPClient(FreshHTTPServices services);

    /// Throws `SecureHTTPError` for what was refused, `TransportError` for what failed and `CancellationError`.
    /// A cancellation ends the wait at once, but for the resolution of the first host. That resolution is not part
    /// of the request's time; it has the limit of the resolver.
    [[nodiscard]] Task<FreshHTTPResponse> fetch(HTTPRequest request, SecureRequestPolicy policy) const;

private:
    struct Shared;
    class Call;
    std::shared_ptr<const Shared> shared_;
};

} // namespace kestrin
