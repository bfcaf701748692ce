#include "monitoring/LiveCheckers.h"

#include "fakes/ManualExecutor.h"
#include "fakes/ManualPool.h"
#include "fakes/VirtualClock.h"
#include "monitoring/MonitorHarness.h"
#include "services/ProviderPreviewError.h"
#include "tasks/TaskScope.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

using std::chrono::seconds;

/// The real parts. Nothing leaves the machine: addresses are refused by their text, and no look-up is let begin.
class TheLiveCheckers : public ::testing::Test {
protected:
    ManualExecutor owner;
    ManualPool pool;
    VirtualClock clock;
    TaskScope tasks;
    std::stop_source shutdown;
    LiveCheckers checkers{{.owner = owner,
        .clock = clock,
        .pool = pool,
        .proxies = ProxySettings(),
        .shutdown = shutdown.get_token()}};

    ~TheLiveCheckers() override {
        tasks.cancel();
        shutdown.request_stop();
        owner.runUntilIdle();
        pool.dropAll();
        owner.runUntilIdle();
        EXPECT_EQ(tasks.size(), 0U);
    }

    template <class T> TaskHandle<T> start(Task<T> task) {
        TaskHandle<T> handle = tasks.spawn(owner, std::move(task));
        owner.runUntilIdle();
        return handle;
    }
};

TEST_F(TheLiveCheckers, bringTheNetworkToLifeWithTheFirstCheck) {
    EXPECT_FALSE(checkers.wereUsed());
    EXPECT_EQ(checkers.abandonedLookups(), 0U);
    SiteDefinition site = siteNamed("a");
    site.url = "https://127.0.0.1/";
    const CheckRecord record = start(checkers.checkWebsite(site, seconds(15))).take();
    EXPECT_TRUE(checkers.wereUsed());
    EXPECT_EQ(record.siteID, "a");
    EXPECT_FALSE(record.up);
    EXPECT_TRUE(record.error.has_value());
    EXPECT_EQ(pool.waiting(), 0U) << "an address of this machine was looked up";
}

TEST_F(TheLiveCheckers, checkAService) {
    ProviderDefinition service = FakeServices::serviceNamed("openai", "OpenAI");
    const ProviderCheckRecord record = start(checkers.checkProvider(service, seconds(15))).take();
    EXPECT_EQ(record.providerID, "openai");
    EXPECT_EQ(record.state, ProviderState::unknown);
    EXPECT_TRUE(record.error.has_value());
}

TEST_F(TheLiveCheckers, previewAService) {
    const TaskHandle<CustomProviderPreview> preview =
        start(checkers.previewCustomProvider("https://127.0.0.1/", seconds(15)));
    ASSERT_TRUE(preview.done());
    EXPECT_THROW((void)preview.take(), ProviderPreviewError);
    EXPECT_TRUE(checkers.wereUsed());
}

TEST_F(TheLiveCheckers, countLookupsThatWereLeftBehind) {
    const TaskHandle<CheckRecord> check = start(checkers.checkWebsite(siteNamed("a"), seconds(15)));
    EXPECT_FALSE(check.done());
    EXPECT_EQ(pool.waiting(), 1U);
    EXPECT_EQ(checkers.abandonedLookups(), 0U);
    clock.advance(seconds(31));
    owner.runUntilIdle();
    ASSERT_TRUE(check.done());
    EXPECT_EQ(check.take().error, "DNS: The lookup did not return");
    EXPECT_EQ(checkers.abandonedLookups(), 1U);
}

TEST_F(TheLiveCheckers, doNotWaitForALookupWhenTheProgramEnds) {
    const TaskHandle<CheckRecord> check = start(checkers.checkWebsite(siteNamed("a"), seconds(15)));
    EXPECT_FALSE(check.done());
    shutdown.request_stop();
    owner.runUntilIdle();
    EXPECT_TRUE(check.done());
}

} // namespace
} // namespace kestrin
