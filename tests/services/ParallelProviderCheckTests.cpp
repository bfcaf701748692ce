#include "probing/ProbingLab.h"
#include "services/CustomProviderPreview.h"
#include "services/KnownServices.h"
#include "services/ProviderAdapters.h"
#include "services/ProviderChecker.h"
#include "services/ServiceCatalog.h"
#include "tasks/CancellationError.h"
#include "tasks/SerialExecutor.h"
#include "tasks/ThreadPool.h"

#include <gtest/gtest.h>
#include <latch>
#include <utility>

namespace kestrin {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t services = 60;

/// What a task left: the record's error, or the state's name.
Task<> noteRecord(Task<ProviderCheckRecord> check, std::string& outcome, std::latch& ended) {
    const ProviderCheckRecord record = co_await std::move(check);
    outcome = record.error.value_or(std::string(title(record.state)) + " at " + record.endpoint);
    ended.count_down();
}

Task<> notePreview(Task<CustomProviderPreview> preview, std::string& outcome, std::latch& ended) {
    try {
        const CustomProviderPreview shown = co_await std::move(preview);
        outcome = std::string(title(shown.state)) + " at " + shown.endpoint.text;
    } catch (const MessageError& error) {
        outcome = error.message;
    } catch (const CancellationError& error) {
        outcome = error.what();
    }
    ended.count_down();
}

/// Service `number`: its first endpoint is missing, its second and an Instatus probe answer.
ProviderDefinition serviceNumber(std::size_t number) {
    CustomProviderDefinition stored;
    stored.id = "provider-" + std::to_string(number);
    stored.statusPageURL = "https://" + std::to_string(number) + ".example/";
    stored.adapter = "statuspage-v2";
    return KnownServices().definition(stored);
}

TEST(CheckingServicesOnRealThreads, everyCheckAndPreviewEndsOnceWithItsOwnAnswerOrItsCancellation) {
    VirtualClock clock;
    ThreadPool threads(20); // for tasks, lookups and transfers, as in the program
    SerialExecutor checks(threads);
    SerialExecutor previews(threads);
    SerialExecutor owner(threads);
    ScriptedTransport internet(clock);
    auto names = std::make_shared<ScriptedResolver>();
    ScriptedTransport::Answer missing;
    missing.response.status = 404;
    ScriptedTransport::Answer present;
    present.response.status = 200;
    present.response.contentType = "application/json";
    present.response.body = R"({"page":{"status":"UP"},"status":{"indicator":"none","description":""}})";
    for (std::size_t number = 0; number < 2 * services; ++number) {
        const std::string host = std::to_string(number) + ".example";
        names->answer(host, {"192.88.99.1"});
        internet.answer(host, missing);
        internet.answer(host, present);
    }
    std::stop_source shutdown;
    const BackgroundResolver resolver(threads, names, clock, shutdown.get_token(), 2 * services);
    const FreshHTTPClient client(FreshHTTPServices{owner, clock, threads, internet, resolver});
    const ProviderCheckDependencies dependencies = liveProviderCheckDependencies(client, resolver);
    const ProviderChecker checker(clock, [] { return std::chrono::sys_seconds(); });

    std::vector<std::string> outcomes(2 * services);
    std::latch ended(static_cast<std::ptrdiff_t>(outcomes.size()));
    std::vector<TaskHandle<>> handles;
    for (std::size_t number = 0; number < outcomes.size(); ++number) {
        const ProviderDefinition service = serviceNumber(number);
        if (number % 2 == 0) {
            auto check = checker.checkProvider(service, dependencies, 15s);
            handles.push_back(spawn(checks, noteRecord(std::move(check), outcomes[number], ended)));
        } else {
            auto preview = previewCustomProvider(service.publicStatusURL.text, dependencies, 15s);
            handles.push_back(spawn(previews, notePreview(std::move(preview), outcomes[number], ended)));
        }
        if (number % 5 == 0) handles[number / 2].cancel();
    }
    ended.wait();

    std::size_t cancelled = 0;
    for (std::size_t number = 0; number < outcomes.size(); ++number) {
        const std::string path = number % 2 == 0 ? "/api/v2/summary.json" : "/summary.json";
        if (outcomes[number] == "Cancelled")
            ++cancelled;
        else
            EXPECT_EQ(outcomes[number], "Operational at https://" + std::to_string(number) + ".example" + path);
    }
    EXPECT_LE(cancelled, outcomes.size() / 5);
    EXPECT_TRUE(threads.shutDown(1min));
}

TEST(KnownServicesOnRealThreads, areBuiltOnceWhoeverAsksFirst) {
    ThreadPool threads(8);
    std::latch ready(8);
    std::latch ended(8);
    using Found = std::pair<const void*, const void*>;
    std::array<Found, 8> all{};
    for (Found& found : all)
        threads.run([&] {
            ready.arrive_and_wait();
            found = {&serviceCatalog(), &bundledProviderDefinitions()};
            ended.count_down();
        });
    ended.wait();
    for (const Found& found : all)
        EXPECT_EQ(found, all.front());
    EXPECT_TRUE(threads.shutDown(1min));
}

} // namespace
} // namespace kestrin
