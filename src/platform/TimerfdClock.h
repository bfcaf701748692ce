#pragma once

#include "tasks/Clock.h"

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

namespace kestrin {

/// CLOCK_BOOTTIME, which goes on while the machine sleeps: a check that fell due in the meantime runs on waking.
/// One kernel timer stands for all deadlines and is off while there is none. Callbacks run from the Qt event loop
/// of the thread that made the clock; the other members are safe from any thread. Throws std::system_error where
/// the kernel refuses the timer.
class TimerfdClock final : public QObject, public Clock {
public:
    explicit TimerfdClock(QObject* parent = nullptr);
    ~TimerfdClock() override;

    [[nodiscard]] Instant now() const override;
    TimerId schedule(Instant when, std::function<void()> callback) override;
    void cancel(TimerId timer) override;
    /// Whether the kernel timer is set: never while nothing is scheduled.
    [[nodiscard]] bool isArmed() const;

private:
    using Key = std::pair<Instant, TimerId>;

    class Descriptor {
    public:
        Descriptor();
        ~Descriptor();
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;
        [[nodiscard]] int get() const { return descriptor_; }

    private:
        int descriptor_;
    };

    void arm();
    void fire();
    [[nodiscard]] std::function<void()> takeDue(Instant now, TimerId newest);

    Descriptor descriptor_;
    QSocketNotifier notifier_;
    mutable std::mutex mutex_;
    std::map<Key, std::function<void()>> pending_;
    std::map<TimerId, Instant> deadlines_;
    TimerId lastTimer_ = 0;
};

} // namespace kestrin
