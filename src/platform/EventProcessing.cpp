#include "platform/EventProcessing.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace kestrin {

bool processEventsUntil(const std::function<bool()>& isOver, std::chrono::milliseconds patience) {
    // The timer itself says when: a clock read beside it might disagree, and then nothing would wake the loop
    // again.
    bool isTimeUp = false;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.callOnTimeout([&isTimeUp] { isTimeUp = true; });
    timer.start(patience);
    while (!isOver()) {
        if (isTimeUp) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::ExcludeUserInputEvents);
    }
    return true;
}

} // namespace kestrin
