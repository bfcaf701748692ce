#include "fakes/CountingPool.h"
#include "fakes/HeldAnswer.h"
#include "fakes/ManualExecutor.h"
#include "monitoring/LiveCheckRunner.h"
#include "tasks/SerialExecutor.h"
#include "tasks/Spawn.h"
#include "tasks/ThreadPool.h"

#include <algorithm>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace kestrin {
namespace {

using Words = std::vector<std::string>;

std::vector<SiteDefinition> sitesNamed(const Words& ids) {
    std::vector<SiteDefinition> sites;
    for (const std::string& id : ids)
        sites.push_back({.id = id, .name = id, .url = "https://" + id + ".example.com/", .enabled = true});
    return sites;
}

std::vector<ProviderDefinition> servicesNamed(const Words& ids) {
    std::vector<ProviderDefinition> services(ids.size());
    std::ranges::transform(ids, services.begin(), [](const std::string& id) {
        ProviderDefinition service;
        service.id = id;
        return service;
    });
    return services;
}

CheckRecord recordOf(const std::string& id, const std::string& timestamp = "") {
    CheckRecord record;
    record.siteID = id;
    record.timestamp = timestamp;
    return record;
}

ProviderCheckRecord serviceRecordOf(const std::string& id) {
    ProviderCheckRecord record;
    record.providerID = id;
    return record;
}

template <class Record> Words idsIn(const std::vector<Record>& records, std::string Record::* id) {
    Words ids;
    std::ranges::transform(records, std::back_inserter(ids), id);
    return ids;
}

/// Single checks that wait for the test, named by their target.
template <class Record> class SingleChecks {
public:
    struct Check {
        std::string id;
        std::chrono::milliseconds timeout{};
        std::stop_token stopToken;
        HeldAnswer<Record> answer;
    };
    std::vector<std::shared_ptr<Check>> begun;

    [[nodiscard]] Task<Record> begin(std::string id, std::chrono::milliseconds timeout) {
        auto check = std::make_shared<Check>();
        check->id = std::move(id);
        check->timeout = timeout;
        begun.push_back(check);
        return wait(std::move(check));
    }

    [[nodiscard]] Words names() const {
        Words names;
        for (const auto& check : begun)
            names.push_back(check->id);
        return names;
    }

private:
    static Task<Record> wait(std::shared_ptr<Check> check) {
        const TaskContext context = co_await currentContext();
        check->stopToken = context.stopToken;
        auto answer = check->answer.wait();
        Record record = co_await answer;
        co_return record;
    }
};

class LiveCheckRunner : public ::testing::Test {
protected:
    ManualExecutor main;
    ManualExecutor elsewhere;
    SingleChecks<CheckRecord> siteChecks;
    SingleChecks<ProviderCheckRecord> serviceChecks;
    MonitoringCheckRunner runner = liveCheckRunner(
        elsewhere,
        [this](
            SiteDefinition site, std::chrono::milliseconds timeout) { return siteChecks.begin(site.id, timeout); },
        [this](ProviderDefinition service, std::chrono::milliseconds timeout) {
            return serviceChecks.begin(service.id, timeout);
        });

    void settle() {
        while (main.runUntilIdle() + elsewhere.runUntilIdle() > 0) {
        }
    }

    TaskHandle<std::vector<CheckRecord>> check(const Words& ids) {
        auto handle = spawn(main, runner.performSiteChecks(sitesNamed(ids)));
        settle();
        return handle;
    }

    void answer(std::size_t index) {
        siteChecks.begun.at(index)->answer.give(recordOf(siteChecks.begun[index]->id));
        settle();
    }
};

TEST_F(LiveCheckRunner, checksAtMostTwoWebsitesAtOnceInListOrder) {
    const auto handle = check({"e", "d", "c", "b", "a"});
    EXPECT_EQ(siteChecks.names(), (Words{"e", "d"}));
    answer(1);
    EXPECT_EQ(siteChecks.names(), (Words{"e", "d", "c"}));
    answer(0);
    EXPECT_EQ(siteChecks.names(), (Words{"e", "d", "c", "b"}));
    answer(2);
    answer(3);
    EXPECT_FALSE(handle.done());
    answer(4);
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(idsIn(handle.take(), &CheckRecord::siteID), (Words{"a", "b", "c", "d", "e"}));
}

TEST_F(LiveCheckRunner, checksTwoWebsitesAndTwoServicesAtTheSameTime) {
    const auto sites = check({"a", "b", "c"});
    const auto services = spawn(main, runner.performProviderChecks(servicesNamed({"z", "y", "x"})));
    settle();
    EXPECT_EQ(siteChecks.begun.size(), 2U);
    EXPECT_EQ(serviceChecks.begun.size(), 2U);
    for (std::size_t index = 0; index < 3; ++index) {
        answer(index);
        serviceChecks.begun.at(index)->answer.give(serviceRecordOf(serviceChecks.begun[index]->id));
        settle();
    }
    ASSERT_TRUE(sites.done() && services.done());
    EXPECT_EQ(idsIn(services.take(), &ProviderCheckRecord::providerID), (Words{"x", "y", "z"}));
}

TEST_F(LiveCheckRunner, givesEachCheckFifteenSeconds) {
    const auto handle = check({"a"});
    EXPECT_EQ(siteChecks.begun.at(0)->timeout, std::chrono::seconds(15));
    answer(0);
    EXPECT_TRUE(handle.done());
}

TEST_F(LiveCheckRunner, givesNothingForAnEmptyList) {
    const auto handle = check({});
    ASSERT_TRUE(handle.done());
    EXPECT_TRUE(handle.take().empty());
}

TEST_F(LiveCheckRunner, keepsResultsOfOneIdentifierInTheOrderTheyCame) {
    const auto handle = check({"b", "b", "a", "b"});
    const auto answerAt = [&](std::size_t index, const char* timestamp) {
        siteChecks.begun.at(index)->answer.give(recordOf(siteChecks.begun[index]->id, timestamp));
        settle();
    };
    answerAt(1, "first");
    answerAt(2, "second");
    answerAt(0, "third");
    answerAt(3, "fourth");
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(idsIn(handle.take(), &CheckRecord::timestamp), (Words{"second", "first", "third", "fourth"}));
}

TEST_F(LiveCheckRunner, startsNothingWhenCancelledBeforehand) {
    const auto handle = spawn(main, runner.performSiteChecks(sitesNamed({"a", "b"})));
    handle.cancel();
    settle();
    ASSERT_TRUE(handle.done());
    EXPECT_TRUE(handle.take().empty());
    EXPECT_TRUE(siteChecks.begun.empty());
}

TEST_F(LiveCheckRunner, cancelsWhatIsInFlightStartsNoMoreAndSeesItsChildrenOut) {
    const auto handle = check({"a", "b", "c"});
    handle.cancel();
    settle();
    EXPECT_TRUE(siteChecks.begun[0]->stopToken.stop_requested());
    EXPECT_TRUE(siteChecks.begun[1]->stopToken.stop_requested());
    answer(0);
    EXPECT_FALSE(handle.done()) << "the other one has not ended";
    answer(1);
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(siteChecks.begun.size(), 2U);
    EXPECT_TRUE(handle.take().empty());
}

TEST_F(LiveCheckRunner, keepsWhatCameBeforeTheCancellation) {
    const auto handle = check({"a", "b", "c"});
    answer(0);
    handle.cancel();
    answer(1);
    answer(2);
    ASSERT_TRUE(handle.done());
    EXPECT_EQ(idsIn(handle.take(), &CheckRecord::siteID), (Words{"a"}));
}

TEST_F(LiveCheckRunner, countsTheChecksOfAListThatWasGivenUpUntilTheyEnd) {
    const auto givenUp = check({"a", "b"});
    givenUp.cancel();
    const auto next = check({"c", "d"});
    EXPECT_EQ(siteChecks.names(), (Words{"a", "b"})) << "two are still in flight";
    answer(0);
    EXPECT_EQ(siteChecks.names(), (Words{"a", "b", "c"}));
    answer(1);
    answer(2);
    answer(3);
    EXPECT_EQ(idsIn(next.take(), &CheckRecord::siteID), (Words{"c", "d"}));
}

TEST_F(LiveCheckRunner, beginsNoCheckThatWasCancelledWhileItWaitedForAPlace) {
    const auto first = check({"a", "b"});
    const auto second = check({"c"});
    second.cancel();
    answer(0);
    ASSERT_TRUE(second.done());
    EXPECT_TRUE(second.take().empty());
    EXPECT_EQ(siteChecks.names(), (Words{"a", "b"}));
    answer(1);
}

TEST_F(LiveCheckRunner, givesNoRecordsOfAKindWithoutACheck) {
    const MonitoringCheckRunner half = liveCheckRunner(
        elsewhere, [this](SiteDefinition site, auto timeout) { return siteChecks.begin(site.id, timeout); },
        nullptr);
    const auto handle = spawn(main, half.performProviderChecks(servicesNamed({"openai"})));
    settle();
    ASSERT_TRUE(handle.done());
    EXPECT_TRUE(handle.take().empty());
}

TEST_F(LiveCheckRunner, checksOnItsOwnExecutorAndComesBackToTheCallers) {
    const auto handle = spawn(main, runner.performSiteChecks(sitesNamed({"a"})));
    main.runUntilIdle();
    EXPECT_TRUE(siteChecks.begun.empty());
    elsewhere.runUntilIdle();
    ASSERT_EQ(siteChecks.begun.size(), 1U);
    siteChecks.begun[0]->answer.give(recordOf("a"));
    elsewhere.runUntilIdle();
    EXPECT_FALSE(handle.done());
    main.runUntilIdle();
    EXPECT_TRUE(handle.done());
}

Task<> deliver(Task<std::vector<CheckRecord>> checks, std::shared_ptr<std::promise<Words>> promise) {
    const std::vector<CheckRecord> records = co_await std::move(checks);
    promise->set_value(idsIn(records, &CheckRecord::siteID));
}

Task<CheckRecord> checkAtOnce(SiteDefinition site) {
    co_return recordOf(site.id);
}

TEST(LiveCheckRunnerOnThreads, givesEveryResultOnceInOrder) {
    ThreadPool threads(4);
    CountingPool pool(threads);
    SerialExecutor caller(pool);
    SerialExecutor checker(pool);
    const MonitoringCheckRunner runner = liveCheckRunner(
        checker, [](SiteDefinition site, std::chrono::milliseconds) { return checkAtOnce(std::move(site)); },
        nullptr);
    Words ids;
    for (int number = 99; number >= 10; --number)
        ids.push_back("site-" + std::to_string(number));
    for (int round = 0; round < 20; ++round) {
        const auto promise = std::make_shared<std::promise<Words>>();
        spawn(caller, deliver(runner.performSiteChecks(sitesNamed(ids)), promise));
        Words sorted = ids;
        std::ranges::sort(sorted);
        ASSERT_EQ(promise->get_future().get(), sorted);
    }
}

} // namespace
} // namespace kestrin
