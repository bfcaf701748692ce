#pragma once

#include "model/WebURL.h"
#include "probing/FreshHTTPClient.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace kestrin {

/// The longest body of a status feed that is read.
inline constexpr std::int64_t maximumStatusFeedBytes = 262'144;

/// What one of `count` requests that follow one another gets of `timeout`: an equal part, three seconds at least.
/// `count` is not 0.
[[nodiscard]] std::chrono::milliseconds statusFeedTimeout(std::chrono::milliseconds timeout, std::size_t count);

/// The request for one status feed: what it says, and that no cache may answer it.
[[nodiscard]] HTTPRequest makeStatusFeedRequest(const WebURL& endpoint, std::chrono::milliseconds timeout);

} // namespace kestrin
