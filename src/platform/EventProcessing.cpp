#include "platform/EventProcessing.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace kestrin {

bool processEventsUntil(const std::function<bool()>& isOver, std::chrono::milliseconds patience) {
    const QDeadlineTimer deadline(patience);
    QTimer wake;
    wake.setSingleShot(true);
    wake.start(patience);
    while (!isOver()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::ExcludeUserInputEvents);
    }
    return true;
}

} // namespace kestrin
