#pragma once

#include "http/NameResolver.h"
#include "model/DNSResolution.h"
#include "tasks/BlockingPool.h"
#include "tasks/Clock.h"
#include "tasks/Task.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace kestrin {

/// Name resolution that a coroutine can wait for. A stuck resolution cannot be stopped, only left behind; those
/// left behind are counted until they return, and at `maximumAbandoned` of them every further resolution fails at
/// once with "DNS: Too many earlier lookups have not returned". The pool needs more threads than that. A handle to
/// shared state: copies count together. Any thread. Pool and clock must outlive every wait; the resolver is kept
/// alive by whatever was left behind.
class BackgroundResolver {
public:
    static constexpr std::size_t defaultMaximumAbandoned = 16;

    /// `shutdown` ends every wait with a `CancellationError`.
    BackgroundResolver(BlockingPool& pool, std::shared_ptr<NameResolver> resolver, Clock& clock,
        std::stop_token shutdown, std::size_t maximumAbandoned = defaultMaximumAbandoned);

    /// Waits however long it takes, also when the task is cancelled. An absent or empty host is an "Invalid host".
    [[nodiscard]] Task<DNSResolution> resolveHostInBackground(std::optional<std::string> host) const;

    /// Waits until `deadline` at most, and then gives nothing. Throws a `CancellationError` as soon as the task is
    /// cancelled.
    [[nodiscard]] Task<std::optional<DNSResolution>> resolveHostUntil(std::string host, Instant deadline) const;

    /// Resolutions that nobody waits for any more and that have not returned.
    [[nodiscard]] std::size_t abandonedCount() const;

private:
    struct Shared;
    class Lookup;
    static Task<DNSResolution> resolve(std::shared_ptr<Shared> shared, std::optional<std::string> host);
    static Task<std::optional<DNSResolution>> resolveUntil(
        std::shared_ptr<Shared> shared, std::string host, Instant deadline);

    std::shared_ptr<Shared> shared_;
};

} // namespace kestrin
