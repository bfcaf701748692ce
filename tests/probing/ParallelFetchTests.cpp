#include "probing/ProbingLab.h"

#include "tasks/CancellationError.h"
#include "tasks/SerialExecutor.h"
#include "tasks/ThreadPool.h"

#include <gmock/gmock.h>

#include <latch>

namespace kestrin {
namespace {

using namespace std::chrono_literals;

Task<> countDownAfter(Task<FreshHTTPResponse> fetch, std::atomic<int>& answered, std::latch& ended) {
    try {
        const FreshHTTPResponse response = co_await std::move(fetch);
        if (response.statusCode == 200) ++answered;
    } catch (const CancellationError&) {
    }
    ended.count_down();
}

TEST(FetchingOnRealThreads, everyCallEndsOnceAndFirstLookupsNeverOverlap) {
    constexpr std::size_t calls = 64;
    VirtualClock clock;
    ThreadPool threads(20); // for tasks, lookups and transfers, as in the program
    SerialExecutor caller(threads);
    SerialExecutor owner(threads);
    ScriptedTransport internet(clock);
    auto names = std::make_shared<ScriptedResolver>();
    std::atomic<int> lookupsAtOnce = 0;
    std::atomic<bool> overlapped = false;
    for (std::size_t number = 0; number < calls; ++number) {
        const std::string host = std::to_string(number) + ".example";
        names->answer(host, [&] {
            if (lookupsAtOnce.fetch_add(1) != 0) overlapped = true;
            std::this_thread::yield();
            --lookupsAtOnce;
            return DNSResolution{true, {"192.88.99.1"}, std::nullopt};
        });
        // The resolution of the redirect takes no turn.
        names->answer("www." + host, {"192.88.99.2"});
        internet.redirect(host, {"https://www." + host + "/"});
        internet.answer("www." + host, 200);
    }
    std::stop_source shutdown;
    const BackgroundResolver resolver(threads, names, clock, shutdown.get_token(), calls);
    const FreshHTTPClient client(FreshHTTPServices{owner, clock, threads, internet, resolver});

    std::atomic<int> answered = 0;
    std::latch ended(static_cast<std::ptrdiff_t>(calls));
    std::vector<TaskHandle<>> handles;
    for (std::size_t number = 0; number < calls; ++number) {
        const std::string url = "https://" + std::to_string(number) + ".example/";
        auto fetch = client.fetch(ProbingLab::request(url), websitePolicy(urlOf(url)));
        handles.push_back(spawn(caller, countDownAfter(std::move(fetch), answered, ended)));
        if (number % 3 == 0) handles[number / 2].cancel();
    }
    ended.wait();

    EXPECT_FALSE(overlapped);
    EXPECT_GE(static_cast<std::size_t>(answered), calls - (calls + 2) / 3);
    EXPECT_TRUE(threads.shutDown(1min));
    EXPECT_EQ(resolver.abandonedCount(), 0U);
}

} // namespace
} // namespace kestrin
