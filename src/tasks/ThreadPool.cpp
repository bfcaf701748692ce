#include "tasks/ThreadPool.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <iterator>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace kestrin {

struct ThreadPool::Work {
    std::function<void()> piece;
    bool isTurn = false; ///< it is never dropped
};

struct ThreadPool::State {
    State(std::size_t maximum, std::chrono::milliseconds idleBeforeEnd, std::size_t standing)
        : maximumThreads(maximum), idleTime(idleBeforeEnd), standingThreads(standing) {}

    const std::size_t maximumThreads;
    const std::chrono::milliseconds idleTime;
    const std::size_t standingThreads;
    std::mutex mutex;
    std::condition_variable workArrived;
    std::condition_variable workEnded;
    std::deque<Work> waiting;
    std::size_t threads = 0;
    std::size_t idle = 0;
    bool closed = false;
    std::map<std::thread::id, std::thread> running; ///< one for each of `threads`, while the pool lives
    std::vector<std::thread> ended;                 ///< to be joined by whoever comes by

    /// One of the pool's threads, as it knows itself.
    struct Worker {
        const State* pool = nullptr;
        bool hasNext = false; ///< it will take the piece that its present one has handed over
    };
    static thread_local Worker worker;

    void serve() {
        std::unique_lock lock(mutex);
        worker.pool = this;
        while (true) {
            if (waiting.empty() && !closed) {
                ++idle;
                workEnded.notify_all();
                waitForWork(lock);
                --idle;
            }
            if (waiting.empty()) break;
            std::function<void()> work = std::move(waiting.front().piece);
            waiting.pop_front();
            lock.unlock();
            work();
            work = nullptr;
            lock.lock();
            worker.hasNext = false;
        }
        --threads;
        if (auto self = running.extract(std::this_thread::get_id())) ended.push_back(std::move(self.mapped()));
        workEnded.notify_all();
    }

    /// Whether the thread that hands over the only waiting piece will take it itself. A piece is usually handed
    /// over by one that is about to end, as a check goes from owner to owner, and waking a thread costs more than
    /// such a piece.
    bool isTakenByWorker() {
        if (worker.pool != this || worker.hasNext || waiting.size() != 1) return false;
        worker.hasNext = true;
        return true;
    }

    /// Comes back without work to a thread that is one too many.
    void waitForWork(std::unique_lock<std::mutex>& lock) {
        const auto isOver = [this] { return !waiting.empty() || closed; };
        while (!isOver()) {
            if (threads <= standingThreads)
                workArrived.wait(lock, isOver);
            else if (!workArrived.wait_for(lock, idleTime, isOver) && threads > standingThreads)
                return;
        }
    }

    /// Sees threads that are on their way out to their end, so that none runs its last lines beside the process's.
    static void join(std::vector<std::thread> threadsToJoin) {
        for (std::thread& thread : threadsToJoin)
            thread.join();
    }
};

thread_local ThreadPool::State::Worker ThreadPool::State::worker;

ThreadPool::ThreadPool(std::size_t maximumThreads, std::chrono::milliseconds idleTime, std::size_t standingThreads)
    : state_(std::make_shared<State>(maximumThreads, idleTime, standingThreads)) {
    const std::lock_guard guard(state_->mutex);
    while (state_->threads < standingThreads)
        startThread();
}

ThreadPool::~ThreadPool() {
    (void)shutDown(std::chrono::milliseconds(0));
}

void ThreadPool::run(std::function<void()> work) {
    submit({.piece = std::move(work), .isTurn = false});
}

void ThreadPool::runTurn(std::function<void()> turn) {
    submit({.piece = std::move(turn), .isTurn = true});
}

void ThreadPool::submit(Work work) {
    std::vector<std::thread> ended;
    bool wakes = false;
    {
        const std::lock_guard guard(state_->mutex);
        if (!state_->closed || work.isTurn) wakes = hire(work);
        // Last: `hire` may throw, and threads that ended must be joined.
        ended.swap(state_->ended);
    }
    // Without the lock, which the woken thread wants at once.
    if (wakes) state_->workArrived.notify_one();
    // What was not taken is dropped here, without the lock: whoever waits for it may want something of this pool.
    work = {};
    State::join(std::move(ended));
}

// Takes the work, or throws and leaves it to the caller. True when an idle thread is to be woken for it.
bool ThreadPool::hire(Work& work) {
    state_->waiting.push_back(std::move(work));
    if (state_->isTakenByWorker()) return false;
    if (state_->idle >= state_->waiting.size() || state_->threads == state_->maximumThreads) return true;
    try {
        startThread();
    } catch (const std::system_error&) {
        // No thread could be had: one that runs takes the work; with none there is nothing to wait for.
        if (state_->threads == 0) {
            work = std::move(state_->waiting.back());
            state_->waiting.pop_back();
            throw;
        }
    }
    return true;
}

void ThreadPool::startThread() {
    std::thread thread([state = state_] { state->serve(); });
    const std::thread::id id = thread.get_id();
    state_->running.emplace(id, std::move(thread));
    ++state_->threads;
}

bool ThreadPool::shutDown(std::chrono::milliseconds patience) {
    std::unique_lock lock(state_->mutex);
    state_->closed = true;
    const auto turns =
        std::ranges::partition(state_->waiting, [](const Work& work) { return !work.isTurn; }).begin();
    std::vector<Work> dropped(std::make_move_iterator(state_->waiting.begin()), std::make_move_iterator(turns));
    state_->waiting.erase(state_->waiting.begin(), turns);
    state_->workArrived.notify_all();
    // Whoever waited for it goes on now, without the lock.
    lock.unlock();
    dropped.clear();
    lock.lock();
    const bool allEnded = state_->workEnded.wait_for(lock, patience, [this] { return state_->threads == 0; });
    for (auto& [id, stuck] : state_->running)
        stuck.detach();
    state_->running.clear();
    std::vector<std::thread> ended = std::exchange(state_->ended, {});
    lock.unlock();
    State::join(std::move(ended));
    return allEnded;
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
