#include "tasks/TaskScope.h"

namespace kestrin {

TaskScope::TaskScope() : TaskScope(std::shared_ptr<State>()) {}

TaskScope::TaskScope(std::shared_ptr<State> outer) : state_(std::make_shared<State>()) {
    state_->outer = std::move(outer);
    if (state_->outer)
        state_->link.emplace(state_->outer->stop.get_token(),
            std::function<void()>([stop = state_->stop]() mutable { stop.request_stop(); }));
}

TaskScope::~TaskScope() {
    cancel();
}

Task<> TaskScope::untilEmpty(std::shared_ptr<State> state) {
    // A task that ended last may have started another one.
    while (state->size() > 0) {
        Emptiness emptiness(state);
        co_await emptiness;
    }
}

void TaskScope::State::enter() {
    if (outer) outer->enter();
    const std::lock_guard guard(mutex);
    ++running;
}

void TaskScope::State::leave() {
    std::vector<std::pair<Executor*, std::coroutine_handle<>>> freed;
    {
        const std::lock_guard guard(mutex);
        if (--running == 0) freed.swap(joiners);
    }
    for (auto [executor, joiner] : freed)
        detail::resumeOn(*executor, joiner);
    // Last, since whoever joins the outer scope may end everything.
    if (outer) outer->leave();
}

std::size_t TaskScope::State::size() {
    const std::lock_guard guard(mutex);
    return running;
}

bool TaskScope::State::addJoiner(Executor* executor, std::coroutine_handle<> joiner) {
    const std::lock_guard guard(mutex);
    if (running == 0) return false;
    joiners.emplace_back(executor, joiner);
    return true;
}

} // namespace kestrin
