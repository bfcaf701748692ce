#include "state/ParallelLoop.h"

#include "model/MessageError.h"
#include "state/StateErrors.h"
#include "state/ThrownMessage.h"
#include "tasks/CancellationError.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <barrier>
#include <latch>
#include <set>
#include <thread>
#include <vector>

using namespace kestrin;

namespace {

/// Waits for the stop of the token.
void awaitStop(const std::stop_token& stop) {
    std::latch stopped(1);
    const std::stop_callback whenStopped(stop, [&stopped] { stopped.count_down(); });
    stopped.wait();
}

std::string failure(std::size_t count, const std::function<void(std::size_t, const std::stop_token&)>& action) {
    return thrownMessage<HistoryReadError>([&] { forEachInParallel(count, {}, action); });
}

} // namespace

TEST(AParallelLoop, takesEveryIndexOnce) {
    for (const std::size_t count : {0u, 1u, 2u, 3u, 100u}) {
        std::vector<std::atomic<int>> calls(count);
        forEachInParallel(count, {}, [&](std::size_t i, const std::stop_token&) { ++calls[i]; });
        for (const std::atomic<int>& calledHere : calls)
            EXPECT_EQ(calledHere, 1) << count;
    }
}

TEST(AParallelLoop, worksOnTwoThreadsAtOnceAndNoMore) {
    std::barrier together(2);
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    forEachInParallel(20, {}, [&](std::size_t, const std::stop_token&) {
        const int now = ++running;
        int seen = most;
        while (seen < now && !most.compare_exchange_weak(seen, now)) {
        }
        together.arrive_and_wait(); // which a single thread would never pass
        --running;
        together.arrive_and_wait();
    });
    EXPECT_EQ(most, 2);
}

TEST(AParallelLoop, throwsTheErrorOfTheEarliestIndexWhicheverFailedFirst) {
    std::latch second(1);
    EXPECT_EQ(failure(2,
                  [&](std::size_t i, const std::stop_token& stop) {
                      if (i == 1) {
                          second.count_down();
                          throw HistoryReadError("second");
                      }
                      second.wait();
                      EXPECT_FALSE(stop.stop_requested()) << "what comes before a failure is not stopped";
                      throw HistoryReadError("first");
                  }),
        "first");

    std::latch first(1);
    EXPECT_EQ(failure(2,
                  [&](std::size_t i, const std::stop_token& stop) {
                      if (i == 0) {
                          first.wait();
                          throw HistoryReadError("first");
                      }
                      first.count_down();
                      awaitStop(stop);
                      throw CancellationError();
                  }),
        "first");
}

TEST(AParallelLoop, throwsTheErrorOfALaterIndexWhenTheEarlierOnesSucceed) {
    EXPECT_EQ(failure(3,
                  [](std::size_t i, const std::stop_token&) {
                      if (i == 2) throw HistoryReadError("third");
                  }),
        "third");
}

TEST(AParallelLoop, beginsNothingAfterAFailure) {
    std::barrier together(2);
    std::atomic<int> later = 0;
    EXPECT_EQ(failure(100,
                  [&](std::size_t i, const std::stop_token& stop) {
                      if (i > 1) {
                          ++later;
                          return;
                      }
                      together.arrive_and_wait();
                      if (i == 0) throw HistoryReadError("first");
                      awaitStop(stop);
                  }),
        "first");
    EXPECT_EQ(later, 0);
}

TEST(AParallelLoop, passesAStopOnToAllThatRuns) {
    std::stop_source source;
    std::barrier together(2, [&]() noexcept { source.request_stop(); });
    std::atomic<int> stopped = 0;
    EXPECT_THROW(forEachInParallel(2, source.get_token(),
                     [&](std::size_t, const std::stop_token& stop) {
                         together.arrive_and_wait();
                         awaitStop(stop);
                         ++stopped;
                         throw CancellationError();
                     }),
        CancellationError);
    EXPECT_EQ(stopped, 2);
}

TEST(AParallelLoop, passesOnAStopThatCameBefore) {
    std::stop_source source;
    source.request_stop();
    forEachInParallel(3, source.get_token(),
        [&](std::size_t, const std::stop_token& stop) { EXPECT_TRUE(stop.stop_requested()); });
}

TEST(AParallelLoop, worksAloneWhenTheSystemGivesNoThread) {
    pthread_attr_t former;
    pthread_attr_t tooLarge;
    ASSERT_EQ(::pthread_getattr_default_np(&former), 0);
    ASSERT_EQ(::pthread_attr_init(&tooLarge), 0);
    ASSERT_EQ(::pthread_attr_setstacksize(&tooLarge, std::size_t{1} << 47), 0); // no address space has as much
    ASSERT_EQ(::pthread_setattr_default_np(&tooLarge), 0);
    EXPECT_THROW(std::thread([] {}).join(), std::system_error);

    std::set<std::thread::id> threads;
    int calls = 0;
    forEachInParallel(10, {}, [&](std::size_t, const std::stop_token&) {
        threads.insert(std::this_thread::get_id());
        ++calls;
    });
    ASSERT_EQ(::pthread_setattr_default_np(&former), 0);
    ::pthread_attr_destroy(&tooLarge);
    ::pthread_attr_destroy(&former);
    EXPECT_EQ(calls, 10);
    EXPECT_EQ(threads, std::set{std::this_thread::get_id()});
}
