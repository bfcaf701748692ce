#pragma once

#include "http/NameResolver.h"
#include "model/DNSResolution.h"
#include "tasks/BlockingPool.h"
#include "tasks/Clock.h"
#include "tasks/Task.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace kestrin {

/// Name resolution that a coroutine can wait for, 30 seconds at most. A lookup that hangs cannot be stopped, only
/// left behind on its thread. Those left behind are counted until they return: at `maximumAbandoned` of them every
/// further lookup fails at once with "DNS: The lookup did not return". A host with a lookup that was left behind
/// and has run for 30 seconds is not asked again before it returns, so that no host takes up more and more threads;
/// whoever asks for it gets at once what waiting would have ended in. The pool needs more threads than
/// `maximumAbandoned`. A handle to shared state: copies count together. Any thread. Pool and clock must outlive
/// every wait; the resolver is kept alive by whatever was left behind.
class BackgroundResolver {
public:
    static constexpr std::size_t defaultMaximumAbandoned = 16;
    static constexpr std::chrono::seconds longestWait{30};

    /// `shutdown` ends every wait with a `CancellationError`.
    BackgroundResolver(BlockingPool& pool, std::shared_ptr<NameResolver> resolver, Clock& clock,
        std::stop_token shutdown, std::size_t maximumAbandoned = defaultMaximumAbandoned);

    /// Waits for the longest wait at most, also when the task is cancelled; after that the error is "DNS: The
    /// lookup did not return". An absent or empty host is an "Invalid host".
    [[nodiscard]] Task<DNSResolution> resolveHostInBackground(std::optional<std::string> host) const;

    /// Waits until `deadline` at most, and no longer than the longest wait, and then gives nothing. Throws a
    /// `CancellationError` as soon as the task is cancelled.
    [[nodiscard]] Task<std::optional<DNSResolution>> resolveHostUntil(std::string host, Instant deadline) const;

    /// Lookups that nobody waits for any more and that have not returned.
    [[nodiscard]] std::size_t abandonedCount() const;

private:
    struct Shared;
    class Lookup;
    static Task<DNSResolution> resolve(std::shared_ptr<Shared> shared, std::optional<std::string> host);
    static Task<std::optional<DNSResolution>> resolveUntil(
        std::shared_ptr<Shared> shared, std::string host, Instant deadline);
    static Task<std::optional<DNSResolution>> lookUp(
        std::shared_ptr<Shared> shared, std::string host, Instant deadline, std::stop_token cancellation);

    std::shared_ptr<Shared> shared_;
};

} // namespace kestrin
