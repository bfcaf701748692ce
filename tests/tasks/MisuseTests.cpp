#include "fakes/ManualExecutor.h"
#include "fakes/ManualPool.h"
#include "tasks/TaskScope.h"

#include <gtest/gtest.h>

#include <coroutine>
#include <optional>

namespace kestrin {
namespace {

// Each of these would resume, destroy or read something twice or too early. The process ends with a sentence
// instead, in every build.

Task<int> one() {
    co_return 1;
}

Task<int> twice(Task<int> task) {
    const int first = co_await std::move(task);
    co_return first + co_await std::move(task);
}

Task<int> plain(Task<int> task) {
    co_return co_await std::move(task);
}

/// Waits until somebody resumes it by hand, which nobody may.
struct ByHand {
    explicit ByHand(std::coroutine_handle<>& place) : waiting(place) {}
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiter) const { waiting = waiter; }
    void await_resume() const noexcept {}
    std::coroutine_handle<>& waiting;
};

Task<> waitByHand(std::coroutine_handle<>& place) {
    ByHand wait(place);
    co_await wait;
    co_await currentContext();
}

class Misuse : public testing::Test {
protected:
    Misuse() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    void startAndRun(Task<int> task) {
        spawn(executor, std::move(task));
        executor.runUntilIdle();
    }

    ManualExecutor executor;
};

TEST_F(Misuse, ofAHandleThatNamesNoTaskIsReported) {
    const TaskHandle<int> none;
    EXPECT_DEATH(none.cancel(), "Misuse of a task: a handle that names none was used");
    EXPECT_DEATH((void)none.done(), "names none");
    EXPECT_DEATH((void)none.isCancelled(), "names none");
    EXPECT_DEATH((void)none.join(), "names none");
    EXPECT_DEATH((void)none.value(), "names none");
    EXPECT_DEATH((void)none.take(), "names none");
}

TEST_F(Misuse, ofAResultTakenBeforeTheEndIsReported) {
    const TaskHandle<int> handle = spawn(executor, one());
    EXPECT_DEATH((void)handle.take(), "its result was taken before its end");
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 1);
}

TEST_F(Misuse, ofAResultTakenTwiceIsReported) {
    const TaskHandle<int> handle = spawn(executor, one());
    executor.runUntilIdle();
    EXPECT_EQ(handle.take(), 1);
    EXPECT_DEATH((void)handle.take(), "its result was taken twice");
    EXPECT_DEATH(startAndRun(handle.value()), "its result was awaited after it had been taken");
}

TEST_F(Misuse, ofATaskThatWasMovedAwayIsReported) {
    Task<int> task = one();
    const Task<int> other = std::move(task);
    EXPECT_DEATH(spawn(executor, std::move(task)), "it was started after it had been moved away"); // NOLINT
    Task<int> gone = one();
    const Task<int> elsewhere = std::move(gone);
    EXPECT_DEATH(startAndRun(plain(std::move(gone))), "it was awaited after it had been moved away");
}

TEST_F(Misuse, ofATaskAwaitedTwiceIsReported) {
    EXPECT_DEATH(startAndRun(twice(one())), "it was awaited twice");
}

TEST_F(Misuse, ofACoroutineResumedOffItsExecutorIsReported) {
    std::coroutine_handle<> waiting;
    spawn(executor, waitByHand(waiting));
    executor.runUntilIdle();
    EXPECT_DEATH(waiting.resume(), "it was resumed off its executor");
    executor.post([waiting] { waiting.resume(); });
    executor.runUntilIdle();
}

/// Runs what is posted without saying whose it is.
class NamelessExecutor : public Executor {
public:
    void post(std::function<void()> work) noexcept override { posted = std::move(work); }
    std::function<void()> posted;
};

TEST_F(Misuse, ofAnExecutorThatRunsItsWorkAsAnotherOnesIsReported) {
    const auto run = [] {
        NamelessExecutor nameless;
        spawn(nameless, one());
        nameless.posted();
    };
    EXPECT_DEATH(run(), "its executor ran it as another one's");
}

} // namespace
} // namespace kestrin
