#include "tasks/FifoGate.h"

#include <algorithm>

namespace kestrin {

FifoGate::Turn::~Turn() {
    if (state_) state_->leave();
}

bool FifoGate::State::enterOrQueue(const std::shared_ptr<Waiter>& waiter) {
    const std::lock_guard guard(mutex);
    if (freePlaces == 0) {
        queue.push_back(waiter);
        return false;
    }
    --freePlaces;
    waiter->isInside = true;
    return true;
}

void FifoGate::State::leave() {
    std::shared_ptr<Waiter> next;
    {
        const std::lock_guard guard(mutex);
        if (queue.empty()) {
            ++freePlaces;
            return;
        }
        // The turn passes directly, so that a newcomer cannot slip in between.
        next = std::move(queue.front());
        queue.pop_front();
        next->isInside = true;
    }
    detail::resumeOn(*next->executor, next->coroutine);
}

void FifoGate::State::giveUp(const std::shared_ptr<Waiter>& waiter) {
    {
        const std::lock_guard guard(mutex);
        const auto place = std::ranges::find(queue, waiter);
        // It has just been given its turn, and is resumed with it.
        if (place == queue.end()) return;
        queue.erase(place);
    }
    detail::resumeOn(*waiter->executor, waiter->coroutine);
}

} // namespace kestrin
