#pragma once

#include <functional>

namespace kestrin {

/// Runs what is posted to it, one piece at a time, in the order of posting, and never inside `post` itself. State
/// that only one executor touches needs no lock. It must outlive every task on it: a piece that is dropped unrun
/// drops the coroutine that it would have resumed.
class Executor {
public:
    virtual ~Executor() = default;
    /// Any thread. Never throws: a task that could not be resumed would be lost with all that it holds.
    virtual void post(std::function<void()> work) noexcept = 0;

    /// The executor whose work runs on this thread, or null.
    [[nodiscard]] static const Executor* current() { return current_; }

protected:
    /// Implementations run each piece through this. `executor` is only a name here; the work may destroy it.
    template <class Work> static void runAs(const Executor* executor, Work&& work) {
        struct Restore {
            const Executor* outer = current_;
            ~Restore() { current_ = outer; }
        } const restore;
        current_ = executor;
        work();
    }

private:
    inline static thread_local const Executor* current_ = nullptr;
};

} // namespace kestrin
