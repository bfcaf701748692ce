#include "fakes/VirtualClock.h"
#include "model/MessageError.h"
#include "probing/BackgroundResolver.h"
#include "tasks/SerialExecutor.h"
#include "tasks/Spawn.h"
#include "tasks/ThreadPool.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <semaphore>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace kestrin {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t lookupsPerRound = 6;
constexpr int rounds = 150;

/// Holds every lookup until the test lets it return. Hosts are numbers.
class HeldResolver : public NameResolver {
public:
    [[nodiscard]] DNSResolution resolve(const std::string& host) override {
        ++begun_;
        begun_.notify_all();
        returns_.at(std::stoul(host)).acquire();
        if (host == "0") throw std::runtime_error("broken");
        return {true, {"192.88.99." + host}, std::nullopt};
    }
    void waitUntilBegun(std::size_t count) const {
        for (std::size_t begun = begun_; begun < count; begun = begun_)
            begun_.wait(begun);
    }
    void letReturn(std::size_t number) { returns_.at(number).release(); }

private:
    std::atomic<std::size_t> begun_ = 0;
    std::array<std::counting_semaphore<>, lookupsPerRound> returns_{std::counting_semaphore<>(0),
        std::counting_semaphore<>(0), std::counting_semaphore<>(0), std::counting_semaphore<>(0),
        std::counting_semaphore<>(0), std::counting_semaphore<>(0)};
};

/// What a wait ended in, and how often it did.
struct Ending {
    std::string outcome;
    int times = 0;
};

Task<DNSResolution> patiently(BackgroundResolver resolver, std::string host) {
    auto resolving = resolver.resolveHostInBackground(std::move(host));
    DNSResolution resolution = co_await std::move(resolving);
    co_return resolution;
}

Task<DNSResolution> until(BackgroundResolver resolver, std::string host, Instant deadline) {
    auto resolving = resolver.resolveHostUntil(std::move(host), deadline);
    std::optional<DNSResolution> resolution = co_await std::move(resolving);
    if (!resolution) throw std::runtime_error("nothing");
    co_return std::move(*resolution);
}

Task<> note(Task<DNSResolution> resolving, Ending& ending, std::latch& ended) {
    try {
        const DNSResolution resolution = co_await std::move(resolving);
        ending.outcome = resolution.ok ? resolution.ips.front() : resolution.error.value_or("");
    } catch (const MessageError& error) {
        ending.outcome = error.message;
    } catch (const std::exception& error) {
        ending.outcome = error.what();
    }
    ++ending.times;
    ended.count_down();
}

/// Rounds of lookups that wait in `resolver` when something happens to all of them at once.
class LookupsOnThreads : public testing::Test {
protected:
    VirtualClock clock;
    ThreadPool threads{
        2 * lookupsPerRound + 2}; ///< for lookups and the tasks that wait for them, as in the program
    SerialExecutor caller{threads};
    std::shared_ptr<HeldResolver> names = std::make_shared<HeldResolver>();
    std::size_t begun = 0;
    std::vector<TaskHandle<>> handles;

    /// Every even lookup has the resolver's limit alone, every odd one that very instant as its deadline.
    std::vector<Ending> outcomesWhile(const BackgroundResolver& resolver, const std::function<void()>& meanwhile) {
        std::vector<Ending> endings(lookupsPerRound);
        std::latch ended(lookupsPerRound);
        handles.clear();
        const Instant limit = clock.now() + BackgroundResolver::longestWait;
        for (std::size_t number = 0; number < lookupsPerRound; ++number) {
            const std::string host = std::to_string(number);
            auto lookup = number % 2 == 0 ? patiently(resolver, host) : until(resolver, host, limit);
            handles.push_back(spawn(caller, note(std::move(lookup), endings[number], ended)));
        }
        begun += lookupsPerRound;
        names->waitUntilBegun(begun);
        {
            std::latch ready(2);
            const std::jthread release([this, &ready] {
                ready.arrive_and_wait();
                for (std::size_t number = 0; number < lookupsPerRound; ++number)
                    names->letReturn(number);
            });
            ready.arrive_and_wait();
            // Now one side is ahead, now the other.
            for (std::size_t left = begun / lookupsPerRound % 3; left > 0; --left)
                std::this_thread::yield();
            meanwhile();
        }
        ended.wait();
        EXPECT_TRUE(threads.waitUntilIdle(1min));
        EXPECT_EQ(resolver.abandonedCount(), 0U);
        EXPECT_EQ(clock.timerCount(), 0U);
        return endings;
    }

    /// Every wait has ended once, with its answer, with its limit or, where they may be, cancelled.
    static void expectEachOnce(
        const std::vector<Ending>& endings, const std::function<bool(std::size_t)>& mayCancel) {
        for (std::size_t number = 0; number < endings.size(); ++number) {
            const std::string& outcome = endings[number].outcome;
            const std::string answer = number == 0 ? "broken" : "192.88.99." + std::to_string(number);
            const std::string limit = number % 2 == 0 ? "DNS: The lookup did not return" : "nothing";
            EXPECT_EQ(endings[number].times, 1);
            EXPECT_TRUE(outcome == answer || outcome == limit || (mayCancel(number) && outcome == "Cancelled"))
                << number << ": " << outcome;
        }
    }

    void expectAllGone() {
        EXPECT_TRUE(threads.shutDown(1min));
        handles.clear();
        EXPECT_EQ(names.use_count(), 1) << "a lookup has been leaked";
    }
};

TEST_F(LookupsOnThreads, thatReturnAtTheLimitEndOnceAndAreNeverMiscounted) {
    {
        std::stop_source shutdown;
        const BackgroundResolver resolver(threads, names, clock, shutdown.get_token());
        for (int round = 0; round < rounds; ++round) {
            const auto endings = outcomesWhile(resolver, [this] { clock.advance(30s); });
            expectEachOnce(endings, [](std::size_t) { return false; });
        }
    }
    expectAllGone();
}

TEST_F(LookupsOnThreads, whoseTasksAreCancelledAtTheLimitEndOnceAndAreNeverMiscounted) {
    {
        std::stop_source shutdown;
        const BackgroundResolver resolver(threads, names, clock, shutdown.get_token());
        for (int round = 0; round < rounds; ++round) {
            const auto endings = outcomesWhile(resolver, [this] {
                const std::jthread cancel([this] {
                    for (const TaskHandle<>& handle : handles)
                        handle.cancel();
                });
                clock.advance(30s);
            });
            expectEachOnce(endings, [](std::size_t number) { return number % 2 == 1; });
        }
    }
    expectAllGone();
}

TEST_F(LookupsOnThreads, thatReturnAsTheProgramEndsEndOnceAndAreNeverMiscounted) {
    for (int round = 0; round < rounds; ++round) {
        std::stop_source shutdown;
        const BackgroundResolver resolver(threads, names, clock, shutdown.get_token());
        const auto endings = outcomesWhile(resolver, [&] {
            const std::jthread end([&shutdown] { shutdown.request_stop(); });
            clock.advance(30s);
        });
        expectEachOnce(endings, [](std::size_t) { return true; });
    }
    expectAllGone();
}

} // namespace
} // namespace kestrin
