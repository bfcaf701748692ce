#include "services/StatusFeedRequest.h"

#include <algorithm>

namespace kestrin {

namespace {

constexpr std::chrono::milliseconds shortestTimeout = std::chrono::seconds(3);

} // namespace

std::chrono::milliseconds statusFeedTimeout(std::chrono::milliseconds timeout, std::size_t count) {
    return std::max(timeout / static_cast<std::int64_t>(count), shortestTimeout);
}

HTTPRequest makeStatusFeedRequest(const WebURL& endpoint, std::chrono::milliseconds timeout) {
    HTTPRequest request;
    request.url = endpoint;
    request.headers = {
        {"User-Agent", "kestrin-service-status/2.0"},
        {"Cache-Control", "no-cache, no-store, max-age=0"},
        {"Pragma", "no-cache"},
    };
    request.timeout = timeout;
    return request;
}

} // namespace kestrin
