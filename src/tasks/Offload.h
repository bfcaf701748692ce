#pragma once

#include "tasks/BlockingPool.h"
#include "tasks/CancellationError.h"
#include "tasks/Task.h"

#include <atomic>
#include <memory>
#include <optional>

namespace kestrin {

namespace detail {

/// One piece of blocking work and the coroutine that waits for it. Whoever ends the wait first posts the
/// resumption; the work owns everything that it touches, so it may end long after the coroutine went on without it.
template <class R, class Work> class OffloadedWork {
public:
    explicit OffloadedWork(Work work) : work_(std::move(work)) {}

    void waitOn(Executor* executor, std::coroutine_handle<> waiter) {
        executor_ = executor;
        waiter_ = waiter;
    }

    void run(const std::stop_token& stopToken) {
        Outcome<R> outcome;
        {
            Work work = std::move(*work_);
            work_.reset();
            try {
                if constexpr (std::is_invocable_v<Work&, std::stop_token>)
                    store(outcome, work, stopToken);
                else
                    store(outcome, work);
            } catch (...) {
                outcome.template emplace<2>(std::current_exception());
            }
        }
        end(std::move(outcome));
    }

    /// The pool dropped the work unrun: its result will never come.
    void drop() {
        if (!work_) return;
        work_.reset();
        Outcome<R> cancelled(std::in_place_index<2>, std::make_exception_ptr(CancellationError()));
        end(std::move(cancelled));
    }

    /// The pool could not take the work and said why. Only on the waiter's executor, before it is resumed.
    void refuse(std::exception_ptr reason) {
        drop();
        outcome_.template emplace<2>(std::move(reason));
    }

    void abandon() {
        if (!isOver_.exchange(true)) resumeOn(*executor_, waiter_);
    }

    Outcome<R>& outcome() { return outcome_; }

private:
    template <class... Arguments>
    static void store(Outcome<R>& outcome, Work& work, const Arguments&... arguments) {
        if constexpr (std::is_void_v<R>) {
            work(arguments...);
            outcome.template emplace<1>();
        } else {
            outcome.template emplace<1>(work(arguments...));
        }
    }

    void end(Outcome<R>&& outcome) {
        if (isOver_.exchange(true)) return;
        outcome_ = std::move(outcome);
        resumeOn(*executor_, waiter_);
    }

    std::optional<Work> work_;
    std::atomic<bool> isOver_ = false;
    Executor* executor_ = nullptr;
    std::coroutine_handle<> waiter_;
    Outcome<R> outcome_;
};

/// What the pool holds: runs the work, or reports that it was dropped.
template <class R, class Work> class PooledWork {
public:
    PooledWork(std::shared_ptr<OffloadedWork<R, Work>> work, std::stop_token stopToken)
        : work_(std::move(work)), stopToken_(std::move(stopToken)) {}
    PooledWork(const PooledWork&) = delete;
    PooledWork& operator=(const PooledWork&) = delete;
    ~PooledWork() { work_->drop(); }
    void run() const { work_->run(stopToken_); }

private:
    std::shared_ptr<OffloadedWork<R, Work>> work_;
    std::stop_token stopToken_;
};

template <class R, class Work> class Offload {
public:
    Offload(BlockingPool& pool, Work work, std::optional<std::stop_token> abandon)
        : pool_(pool), shared_(std::make_shared<OffloadedWork<R, Work>>(std::move(work))),
          abandon_(std::move(abandon)) {}

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class Promise> void await_suspend(std::coroutine_handle<Promise> waiter) {
        const TaskContext& context = contextOf(waiter);
        shared_->waitOn(context.executor, waiter);
        auto pooled = std::make_shared<PooledWork<R, Work>>(shared_, context.stopToken);
        try {
            pool_.run([work = std::move(pooled)] { work->run(); });
        } catch (...) {
            shared_->refuse(std::current_exception());
        }
        if (abandon_)
            abandonment_.emplace(*abandon_, std::function<void()>([shared = shared_] { shared->abandon(); }));
    }
    std::optional<StoredResult<R>> await_resume() {
        abandonment_.reset();
        Outcome<R>& outcome = shared_->outcome();
        if (std::holds_alternative<std::monostate>(outcome)) return std::nullopt;
        return takeOutcome<R>(std::move(outcome));
    }

private:
    BlockingPool& pool_;
    std::shared_ptr<OffloadedWork<R, Work>> shared_;
    std::optional<std::stop_token> abandon_;
    std::optional<std::stop_callback<std::function<void()>>> abandonment_;
};

template <class Work> struct WorkResult {
    using type = std::invoke_result_t<Work&>;
};
template <class Work>
    requires std::is_invocable_v<Work&, std::stop_token>
struct WorkResult<Work> {
    using type = std::invoke_result_t<Work&, std::stop_token>;
};

} // namespace detail

/// Runs `work` on the pool and waits for it. `work` may take the task's stop token; what it throws is thrown here,
/// and so is what a pool throws that cannot take it. A pool that drops it unrun gives a `CancellationError`.
template <class Work> Task<typename detail::WorkResult<Work>::type> offload(BlockingPool& pool, Work work) {
    using R = typename detail::WorkResult<Work>::type;
    detail::Offload<R, Work> wait(pool, std::move(work), std::nullopt);
    auto result = co_await wait;
    if constexpr (!std::is_void_v<R>) co_return std::move(*result);
}

/// The same until `abandon` is requested; then goes on with no value. A result that comes later is dropped. `work`
/// owns all that it touches, for it may run on after everything else has gone.
template <class Work>
Task<std::optional<detail::StoredResult<typename detail::WorkResult<Work>::type>>> offloadOrAbandon(
    BlockingPool& pool, Work work, std::stop_token abandon) {
    using R = typename detail::WorkResult<Work>::type;
    detail::Offload<R, Work> wait(pool, std::move(work), std::move(abandon));
    auto result = co_await wait;
    co_return std::move(result);
}

} // namespace kestrin
