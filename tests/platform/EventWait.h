#pragma once

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>

namespace kestrin::test {

/// Runs the event loop until the condition holds. False after a limit that only a failure reaches.
template <class Condition> [[nodiscard]] bool waitUntil(Condition condition) {
    const QDeadlineTimer limit(std::chrono::seconds(30));
    QTimer look;
    look.start(std::chrono::milliseconds(5));
    QEventLoop loop;
    while (!condition()) {
        if (limit.hasExpired()) return false;
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace kestrin::test
