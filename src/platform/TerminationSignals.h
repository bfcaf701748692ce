#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace kestrin {

/// Turns SIGINT, SIGTERM and SIGHUP into a call on the event loop, so that a session that ends or a Ctrl-C takes
/// the ordinary way out. Main thread; one per process.
class TerminationSignals {
public:
    /// Before the first thread is started: threads inherit what is blocked.
    static void block();

    explicit TerminationSignals(std::function<void()> onTermination);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    int descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace kestrin
