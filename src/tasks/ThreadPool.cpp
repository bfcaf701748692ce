#include "tasks/ThreadPool.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace kestrin {

struct ThreadPool::State {
    State(std::size_t maximum, std::chrono::milliseconds idleBeforeEnd)
        : maximumThreads(maximum), idleTime(idleBeforeEnd) {}

    const std::size_t maximumThreads;
    const std::chrono::milliseconds idleTime;
    std::mutex mutex;
    std::condition_variable workArrived;
    std::condition_variable workEnded;
    std::deque<std::function<void()>> waiting;
    std::size_t threads = 0;
    std::size_t idle = 0;
    bool closed = false;

    void serve() {
        std::unique_lock lock(mutex);
        while (true) {
            if (waiting.empty() && !closed) {
                ++idle;
                workEnded.notify_all();
                workArrived.wait_for(lock, idleTime, [this] { return !waiting.empty() || closed; });
                --idle;
            }
            if (waiting.empty()) break;
            std::function<void()> work = std::move(waiting.front());
            waiting.pop_front();
            lock.unlock();
            work();
            work = nullptr;
            lock.lock();
        }
        --threads;
        workEnded.notify_all();
    }
};

ThreadPool::ThreadPool(std::size_t maximumThreads, std::chrono::milliseconds idleTime)
    : state_(std::make_shared<State>(maximumThreads, idleTime)) {}

ThreadPool::~ThreadPool() {
    (void)shutDown(std::chrono::milliseconds(0));
}

void ThreadPool::run(std::function<void()> work) {
    const std::lock_guard guard(state_->mutex);
    if (state_->closed) return;
    state_->waiting.push_back(std::move(work));
    if (state_->idle >= state_->waiting.size() || state_->threads == state_->maximumThreads) {
        state_->workArrived.notify_one();
        return;
    }
    ++state_->threads;
    try {
        std::thread([state = state_] { state->serve(); }).detach();
    } catch (const std::system_error&) {
        // No thread could be had: one that runs takes the work; with none there is nothing to wait for.
        --state_->threads;
        if (state_->threads == 0) {
            state_->waiting.pop_back();
            throw;
        }
    }
}

bool ThreadPool::shutDown(std::chrono::milliseconds patience) {
    std::deque<std::function<void()>> dropped;
    std::unique_lock lock(state_->mutex);
    state_->closed = true;
    dropped.swap(state_->waiting);
    state_->workArrived.notify_all();
    const bool ended = state_->workEnded.wait_for(lock, patience, [this] { return state_->threads == 0; });
    lock.unlock();
    return ended;
}

bool ThreadPool::waitUntilIdle(std::chrono::milliseconds patience) {
    std::unique_lock lock(state_->mutex);
    return state_->workEnded.wait_for(
        lock, patience, [this] { return state_->waiting.empty() && state_->threads == state_->idle; });
}

std::size_t ThreadPool::busyThreads() const {
    const std::lock_guard guard(state_->mutex);
    return state_->threads - state_->idle;
}

} // namespace kestrin
