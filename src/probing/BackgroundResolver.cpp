#include "probing/BackgroundResolver.h"

#include "tasks/CancellationError.h"
#include "tasks/Offload.h"

#include <functional>
#include <mutex>
#include <utility>

namespace kestrin {

struct BackgroundResolver::Shared {
    BlockingPool& pool;
    std::shared_ptr<NameResolver> resolver;
    Clock& clock;
    std::stop_token shutdown;
    std::size_t maximumAbandoned;

    std::mutex mutex;
    std::size_t abandoned = 0;

    Shared(BlockingPool& threads, std::shared_ptr<NameResolver> names, Clock& time, std::stop_token end,
        std::size_t maximum)
        : pool(threads), resolver(std::move(names)), clock(time), shutdown(std::move(end)),
          maximumAbandoned(maximum) {}

    [[nodiscard]] bool mayStart() {
        const std::lock_guard guard(mutex);
        return abandoned < maximumAbandoned;
    }
};

/// One resolution, shared by the thread that runs it and the coroutine that waits.
class BackgroundResolver::Lookup {
public:
    Lookup(std::shared_ptr<Shared> shared, std::string host) : shared_(std::move(shared)), host_(std::move(host)) {}

    void abandon() {
        const std::lock_guard guard(shared_->mutex);
        abandoned_ = true;
        if (!returned_) ++shared_->abandoned;
    }

    /// The resolution has ended, or will never run.
    void markReturned() {
        const std::lock_guard guard(shared_->mutex);
        returned_ = true;
        if (abandoned_) --shared_->abandoned;
    }

    DNSResolution run() {
        {
            const std::lock_guard guard(shared_->mutex);
            if (abandoned_) return {};
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
    std::shared_ptr<Shared> shared_;
    std::string host_;
    bool abandoned_ = false; // both under the shared mutex
    bool returned_ = false;
};

namespace {

constexpr const char* tooManyAbandoned = "DNS: Too many earlier lookups have not returned";

DNSResolution failure(const char* error) {
    DNSResolution resolution;
    resolution.error = error;
    return resolution;
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
    const std::lock_guard guard(shared_->mutex);
    return shared_->abandoned;
}

Task<DNSResolution> BackgroundResolver::resolve(std::shared_ptr<Shared> shared, std::optional<std::string> host) {
    if (!host || host->empty()) co_return failure("Invalid host");
    if (shared->shutdown.stop_requested()) throw CancellationError();
    if (!shared->mayStart()) co_return failure(tooManyAbandoned);

    auto lookup = std::make_shared<Lookup>(shared, std::move(*host));
    Lookup::Work work(lookup);
    auto waiting = offloadOrAbandon(shared->pool, std::move(work), shared->shutdown);
    std::optional<DNSResolution> resolution = co_await std::move(waiting);
    if (!resolution) {
        lookup->abandon();
        throw CancellationError();
    }
    co_return std::move(*resolution);
}

Task<std::optional<DNSResolution>> BackgroundResolver::resolveUntil(
    std::shared_ptr<Shared> shared, std::string host, Instant deadline) {
    const TaskContext context = co_await currentContext();
    if (context.isCancelled() || shared->shutdown.stop_requested()) throw CancellationError();
    if (shared->clock.now() >= deadline) co_return std::nullopt;
    if (!shared->mayStart()) co_return failure(tooManyAbandoned);

    const std::stop_source giveUp;
    const auto stop = [source = giveUp]() mutable { source.request_stop(); };
    const std::stop_callback<std::function<void()>> onCancellation(context.stopToken, stop);
    const std::stop_callback<std::function<void()>> onShutdown(shared->shutdown, stop);
    const StopAt onDeadline(shared->clock, deadline, giveUp);

    auto lookup = std::make_shared<Lookup>(shared, std::move(host));
    Lookup::Work work(lookup);
    auto waiting = offloadOrAbandon(shared->pool, std::move(work), giveUp.get_token());
    std::optional<DNSResolution> resolution = co_await std::move(waiting);
    if (!resolution) {
        lookup->abandon();
        if (context.isCancelled() || shared->shutdown.stop_requested()) throw CancellationError();
    }
    co_return resolution;
}

} // namespace kestrin
