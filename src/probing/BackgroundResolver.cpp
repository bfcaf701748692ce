#include "probing/BackgroundResolver.h"

#include "tasks/CancellationError.h"
#include "tasks/Offload.h"

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

namespace kestrin {

/// The lookups that were left behind and have not returned, by host, with the instant at which each began.
using LeftBehind = std::multimap<std::string, Instant>;

struct BackgroundResolver::Shared {
    BlockingPool& pool;
    std::shared_ptr<NameResolver> resolver;
    Clock& clock;
    std::stop_token shutdown;
    std::size_t maximumAbandoned;

    std::mutex mutex;
    LeftBehind leftBehind;

    Shared(BlockingPool& threads, std::shared_ptr<NameResolver> names, Clock& time, std::stop_token end,
        std::size_t maximum)
        : pool(threads), resolver(std::move(names)), clock(time), shutdown(std::move(end)),
          maximumAbandoned(maximum) {}

    [[nodiscard]] std::size_t abandoned() {
        const std::lock_guard guard(mutex);
        return leftBehind.size();
    }
    [[nodiscard]] bool hasRoom() { return abandoned() < maximumAbandoned; }

    /// Asking such a host again would only leave another thread behind, cycle after cycle.
    [[nodiscard]] bool hangs(const std::string& host) {
        const Instant now = clock.now();
        const std::lock_guard guard(mutex);
        const auto [first, last] = leftBehind.equal_range(host);
        return std::any_of(first, last, [now](const auto& left) { return now - left.second >= longestWait; });
    }
};

/// One resolution, shared by the thread that runs it and the coroutine that waits.
class BackgroundResolver::Lookup {
public:
    Lookup(std::shared_ptr<Shared> shared, std::string host, Instant began)
        : shared_(std::move(shared)), host_(std::move(host)), began_(began) {}

    void abandon() {
        const std::lock_guard guard(shared_->mutex);
        isAbandoned_ = true;
        if (!hasReturned_) entry_ = shared_->leftBehind.emplace(host_, began_);
    }

    /// The resolution has ended, or will never run.
    void markReturned() {
        const std::lock_guard guard(shared_->mutex);
        hasReturned_ = true;
        if (isAbandoned_) shared_->leftBehind.erase(entry_);
    }

    DNSResolution run() {
        {
            const std::lock_guard guard(shared_->mutex);
            if (isAbandoned_) return {};
        }
        return shared_->resolver->resolve(host_);
    }

    /// The callable that goes to the pool. Its end is the end of the resolution, also when the pool drops it unrun.
    class Work {
    public:
        explicit Work(std::shared_ptr<Lookup> lookup) : lookup_(std::move(lookup)) {}
        Work(Work&&) noexcept = default;
        Work& operator=(Work&&) = delete;
        ~Work() {
            if (lookup_) lookup_->markReturned();
        }
        DNSResolution operator()() { return lookup_->run(); }

    private:
        std::shared_ptr<Lookup> lookup_;
    };

private:
    const std::shared_ptr<Shared> shared_;
    const std::string host_;
    const Instant began_;
    bool isAbandoned_ = false; // these three under the shared mutex
    bool hasReturned_ = false;
    LeftBehind::iterator entry_; // while abandoned and not returned
};

namespace {

DNSResolution failure(const char* error) {
    DNSResolution resolution;
    resolution.error = error;
    return resolution;
}

DNSResolution didNotReturn() {
    return failure("DNS: The lookup did not return");
}

/// Requests a stop at an instant, unless it goes first.
class StopAt {
public:
    StopAt(Clock& clock, Instant when, std::stop_source stop) : clock_(clock) {
        timer_ = clock.schedule(when, [stop = std::move(stop)]() mutable { stop.request_stop(); });
    }
    StopAt(const StopAt&) = delete;
    StopAt& operator=(const StopAt&) = delete;
    ~StopAt() { clock_.cancel(timer_); }

private:
    Clock& clock_;
    Clock::TimerId timer_ = 0;
};

} // namespace

BackgroundResolver::BackgroundResolver(BlockingPool& pool, std::shared_ptr<NameResolver> resolver, Clock& clock,
    std::stop_token shutdown, std::size_t maximumAbandoned)
    : shared_(std::make_shared<Shared>(pool, std::move(resolver), clock, std::move(shutdown), maximumAbandoned)) {}

Task<DNSResolution> BackgroundResolver::resolveHostInBackground(std::optional<std::string> host) const {
    return resolve(shared_, std::move(host));
}

Task<std::optional<DNSResolution>> BackgroundResolver::resolveHostUntil(std::string host, Instant deadline) const {
    return resolveUntil(shared_, std::move(host), deadline);
}

std::size_t BackgroundResolver::abandonedCount() const {
    return shared_->abandoned();
}

Task<DNSResolution> BackgroundResolver::resolve(std::shared_ptr<Shared> shared, std::optional<std::string> host) {
    if (!host || host->empty()) co_return failure("Invalid host");
    if (shared->shutdown.stop_requested()) throw CancellationError();
    if (!shared->hasRoom() || shared->hangs(*host)) co_return didNotReturn();
    // Not the task's own token: its cancellation does not end this wait.
    auto waiting = lookUp(shared, std::move(*host), Instant::max(), std::stop_token());
    std::optional<DNSResolution> resolution = co_await std::move(waiting);
    if (!resolution) co_return didNotReturn();
    co_return std::move(*resolution);
}

Task<std::optional<DNSResolution>> BackgroundResolver::resolveUntil(
    std::shared_ptr<Shared> shared, std::string host, Instant deadline) {
    const TaskContext context = co_await currentContext();
    if (context.isCancelled() || shared->shutdown.stop_requested()) throw CancellationError();
    if (shared->clock.now() >= deadline) co_return std::nullopt;
    if (!shared->hasRoom()) co_return didNotReturn();
    if (shared->hangs(host)) co_return std::nullopt;
    auto waiting = lookUp(shared, std::move(host), deadline, context.stopToken);
    std::optional<DNSResolution> resolution = co_await std::move(waiting);
    co_return resolution;
}

/// Leaves the resolution behind at `deadline`, after the longest wait and upon `cancellation`.
Task<std::optional<DNSResolution>> BackgroundResolver::lookUp(
    std::shared_ptr<Shared> shared, std::string host, Instant deadline, std::stop_token cancellation) {
    const std::stop_source giveUp;
    const auto stop = [source = giveUp]() mutable { source.request_stop(); };
    const std::stop_callback<std::function<void()>> onCancellation(cancellation, stop);
    const std::stop_callback<std::function<void()>> onShutdown(shared->shutdown, stop);
    const Instant began = shared->clock.now();
    const StopAt onDeadline(shared->clock, std::min(deadline, began + longestWait), giveUp);

    auto lookup = std::make_shared<Lookup>(shared, std::move(host), began);
    Lookup::Work work(lookup);
    auto waiting = offloadOrAbandon(shared->pool, std::move(work), giveUp.get_token());
    std::optional<DNSResolution> resolution = co_await std::move(waiting);
    if (!resolution) {
        lookup->abandon();
        if (cancellation.stop_requested() || shared->shutdown.stop_requested()) throw CancellationError();
    }
    co_return resolution;
}

} // namespace kestrin
