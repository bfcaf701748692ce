#pragma once

#include "tasks/TaskScope.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace kestrin {

/// Runs all tasks concurrently as children of the awaiting task and gives their results in the given order. Waits
/// for every one of them, also when one throws; then throws what the first in order threw.
template <class T> Task<std::vector<T>> whenAll(std::vector<Task<T>> tasks) {
    const TaskContext context = co_await currentContext();
    std::vector<TaskHandle<T>> children;
    children.reserve(tasks.size());
    for (Task<T>& task : tasks)
        children.push_back(spawnChild(*context.executor, context.stopToken, std::move(task)));
    for (const TaskHandle<T>& child : children)
        co_await child.join();
    std::vector<T> results;
    results.reserve(children.size());
    for (const TaskHandle<T>& child : children)
        results.push_back(child.take());
    co_return results;
}

inline Task<> whenAll(std::vector<Task<>> tasks) {
    const TaskContext context = co_await currentContext();
    std::vector<TaskHandle<>> children;
    children.reserve(tasks.size());
    for (Task<>& task : tasks)
        children.push_back(spawnChild(*context.executor, context.stopToken, std::move(task)));
    for (const TaskHandle<>& child : children)
        co_await child.join();
    for (const TaskHandle<>& child : children)
        child.take();
}

namespace detail {

template <class Item, class R, class Function> struct MapProgress {
    std::vector<Item> items;
    Function function;
    std::size_t next = 0;
    std::vector<R> results;
};

/// One of the `limit` lanes of a bounded map: takes the next item when its last one has ended.
template <class Item, class R, class Function>
Task<> mapLane(std::shared_ptr<MapProgress<Item, R, Function>> progress) {
    const TaskContext context = co_await currentContext();
    while (!context.isCancelled() && progress->next < progress->items.size()) {
        Item item = std::move(progress->items[progress->next++]);
        Task<R> child = progress->function(std::move(item));
        R result = co_await std::move(child);
        if (context.isCancelled()) co_return;
        progress->results.push_back(std::move(result));
    }
}

} // namespace detail

/// Runs `function` (an item to a `Task<R>`) over the items, at most `limit` at once, started in order; gives the
/// results in the order in which they came. An empty list, a limit of 0 and a task already cancelled give none.
/// After a cancellation nothing more is started and what still comes in is dropped.
template <class Item, class Function>
auto boundedMap(std::vector<Item> items, std::size_t limit, Function function)
    -> Task<std::vector<typename std::invoke_result_t<Function&, Item>::Result>> {
    using R = typename std::invoke_result_t<Function&, Item>::Result;
    using Progress = detail::MapProgress<Item, R, Function>;
    const TaskContext context = co_await currentContext();
    if (items.empty() || limit == 0 || context.isCancelled()) co_return std::vector<R>();

    auto progress = std::make_shared<Progress>(std::move(items), std::move(function));
    std::vector<Task<>> lanes;
    for (std::size_t lane = 0; lane < limit && lane < progress->items.size(); ++lane)
        lanes.push_back(detail::mapLane<Item, R, Function>(progress));
    co_await whenAll(std::move(lanes));
    co_return std::move(progress->results);
}

/// Runs a task on another executor, cancelled along with the awaiting one, and comes back with its result.
template <class T> Task<T> runOn(Executor& executor, Task<T> task) {
    const TaskContext context = co_await currentContext();
    TaskHandle<T> child = spawnChild(executor, context.stopToken, std::move(task));
    co_await child.join();
    if constexpr (std::is_void_v<T>)
        child.take();
    else
        co_return child.take();
}

/// Runs an operation that must not be interrupted halfway: on its owner's executor and in the owner's scope, so the
/// caller's cancellation does not reach it. Waits for its end also when the caller is cancelled, and gives its
/// result. Every wait inside such an operation needs a limit of its own.
template <class T> Task<T> runToCompletion(TaskScope& scope, Executor& executor, Task<T> task) {
    TaskHandle<T> operation = scope.spawn(executor, std::move(task));
    co_await operation.join();
    if constexpr (std::is_void_v<T>)
        operation.take();
    else
        co_return operation.take();
}

} // namespace kestrin
