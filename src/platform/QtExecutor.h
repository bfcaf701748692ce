#pragma once

#include "tasks/Executor.h"

#include <QObject>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace kestrin {

/// Runs work on the Qt event loop of the thread that made it. A turn of the loop runs what was queued when the turn
/// began, so work that posts more work cannot keep the loop from drawing. However much is posted, one wake-up at
/// most is under way. What is left at destruction is dropped unrun. `post` is safe from any thread.
class QtExecutor final : public QObject, public Executor {
public:
    explicit QtExecutor(QObject* parent = nullptr) : QObject(parent) {}
    ~QtExecutor() override;

    void post(std::function<void()> work) noexcept override;
    /// For the end of the program: runs what is queued and what that queues, until nothing is left.
    void drain();
    /// Turns of the loop taken so far.
    [[nodiscard]] std::size_t wakeUps() const { return wakeUps_; }

    bool event(QEvent* event) override;

private:
    [[nodiscard]] std::function<void()> takeNext();
    void wake(std::unique_lock<std::mutex>& lock);

    std::mutex mutex_;
    std::deque<std::function<void()>> queue_;
    bool waking_ = false;
    std::size_t wakeUps_ = 0;
};

} // namespace kestrin
