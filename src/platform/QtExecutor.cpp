#include "platform/QtExecutor.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <utility>

namespace kestrin {

namespace {

QEvent::Type turnEvent() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

} // namespace

QtExecutor::~QtExecutor() {
    QCoreApplication::removePostedEvents(this);
}

void QtExecutor::post(std::function<void()> work) noexcept {
    std::unique_lock lock(mutex_);
    queue_.push_back(std::move(work));
    wake(lock);
}

void QtExecutor::wake(std::unique_lock<std::mutex>&) {
    if (std::exchange(waking_, true)) return;
    QCoreApplication::postEvent(this, new QEvent(turnEvent()));
}

std::function<void()> QtExecutor::takeNext() {
    std::unique_lock lock(mutex_);
    if (queue_.empty()) return {};
    auto work = std::move(queue_.front());
    queue_.pop_front();
    // The work may open a dialog with a loop of its own: the rest must be able to run in there.
    if (!queue_.empty()) wake(lock);
    return work;
}

bool QtExecutor::event(QEvent* event) {
    if (event->type() != turnEvent()) return QObject::event(event);
    ++wakeUps_;
    std::size_t turn = 0;
    {
        const std::lock_guard lock(mutex_);
        waking_ = false;
        turn = queue_.size();
    }
    for (; turn > 0; --turn) {
        const auto work = takeNext();
        if (!work) break;
        runAs(this, work);
    }
    return true;
}

void QtExecutor::drain() {
    Q_ASSERT(QThread::currentThread() == thread());
    while (const auto work = takeNext())
        runAs(this, work);
}

} // namespace kestrin
