#include "platform/TimerfdClock.h"

#include "platform/EventWait.h"

#include <atomic>
#include <ctime>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace kestrin {

using namespace std::chrono_literals;
using test::waitUntil;

TEST(TheBootClock, tellsTheTimeThatGoesOnWhileTheMachineSleeps) {
    const auto boot = [] {
        timespec time{};
        clock_gettime(CLOCK_BOOTTIME, &time);
        return Instant(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
    };
    const TimerfdClock clock;
    const Instant before = boot();
    const Instant now = clock.now();
    EXPECT_LE(before, now);
    EXPECT_LE(now, boot());
}

TEST(TheBootClock, callsBackInTheOrderOfTheDeadlinesAndNeverEarly) {
    TimerfdClock clock;
    std::vector<int> fired;
    const Instant start = clock.now();
    clock.schedule(start + 20ms, [&] {
        EXPECT_GE(clock.now(), start + 20ms);
        fired.push_back(2);
    });
    clock.schedule(start + 10ms, [&] {
        EXPECT_GE(clock.now(), start + 10ms);
        fired.push_back(1);
    });
    ASSERT_TRUE(waitUntil([&] { return fired.size() == 2; }));
    EXPECT_EQ(fired, (std::vector{1, 2}));
    EXPECT_FALSE(clock.isArmed());
}

TEST(TheBootClock, callsBackForADeadlineThatHasPassedButNotInsideSchedule) {
    TimerfdClock clock;
    int fired = 0;
    clock.schedule(clock.now() - 1h, [&] { ++fired; });
    clock.schedule(Instant::min(), [&] { ++fired; });
    EXPECT_EQ(fired, 0);
    EXPECT_TRUE(waitUntil([&] { return fired == 2; }));
}

TEST(TheBootClock, neverReachesADeadlineAtTheEndOfTime) {
    TimerfdClock clock;
    bool farFired = false;
    bool nearFired = false;
    const auto far = clock.schedule(Instant::max(), [&] { farFired = true; });
    clock.schedule(clock.now(), [&] { nearFired = true; });
    ASSERT_TRUE(waitUntil([&] { return nearFired; }));
    EXPECT_FALSE(farFired);
    EXPECT_TRUE(clock.isArmed());
    clock.cancel(far);
    EXPECT_FALSE(clock.isArmed());
}

TEST(TheBootClock, setsTheKernelTimerOnlyWhileSomethingIsScheduled) {
    TimerfdClock clock;
    EXPECT_FALSE(clock.isArmed());
    const auto later = clock.schedule(clock.now() + 2h, [] {});
    const auto sooner = clock.schedule(clock.now() + 1h, [] {});
    clock.cancel(sooner);
    EXPECT_TRUE(clock.isArmed());
    clock.cancel(later);
    EXPECT_FALSE(clock.isArmed());
    clock.cancel(later);
}

TEST(TheBootClock, doesNotCallBackWhatAnEarlierCallbackCancels) {
    TimerfdClock clock;
    std::vector<int> fired;
    Clock::TimerId second = 0;
    const Instant past = clock.now() - 1s;
    clock.schedule(past, [&] {
        fired.push_back(1);
        clock.cancel(second);
    });
    second = clock.schedule(past, [&] { fired.push_back(2); });
    clock.schedule(past, [&] { fired.push_back(3); });
    ASSERT_TRUE(waitUntil([&] { return fired.size() >= 2; }));
    EXPECT_EQ(fired, (std::vector{1, 3}));
}

TEST(TheBootClock, keepsTheLoopAliveUnderACallbackThatAlwaysSchedulesThePast) {
    TimerfdClock clock;
    bool other = false;
    std::function<void()> again = [&] {
        if (!other) clock.schedule(clock.now() - 1s, again);
    };
    again();
    QMetaObject::invokeMethod(&clock, [&] { other = true; }, Qt::QueuedConnection);
    EXPECT_TRUE(waitUntil([&] { return other && !clock.isArmed(); }));
}

TEST(TheBootClock, isSafeToUseFromManyThreads) {
    TimerfdClock clock;
    std::atomic<int> fired = 0;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                clock.schedule(clock.now() + std::chrono::microseconds(i), [&] { ++fired; });
                clock.cancel(clock.schedule(clock.now() + 1h, [&] { fired = -10000; }));
            }
        });
    EXPECT_TRUE(waitUntil([&] { return fired == 800; }));
    threads.clear();
    EXPECT_FALSE(clock.isArmed());
}

} // namespace kestrin
