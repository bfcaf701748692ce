#include "fakes/HeldAnswer.h"
#include "probing/TransportError.h"
#include "services/ProviderCheckLab.h"
#include "tasks/CancellationError.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using Category = ProviderFailureCategory;
using testing::ElementsAre;
using testing::IsEmpty;
using Lab = ProviderCheckLab;

struct CancellingLab : Lab {
    TaskHandle<ProviderCheckRecord> check;

    std::function<void()> cancellation() {
        return [this] { check.cancel(); };
    }
    ProviderCheckRecord recordOfCancelled() {
        check = start(service());
        executor.runUntilIdle();
        return check.take();
    }
    static ProviderCheckRecord cancelled(const std::string& endpoint, std::optional<std::int64_t> httpStatus) {
        return failure(endpoint, httpStatus, Category::unreachable, "Cancelled");
    }
};

TEST(ACancelledCheckOfAService, thatHasNotBegunAsksNobody) {
    CancellingLab lab;
    const auto check = lab.start(Lab::service());
    check.cancel();
    lab.executor.runUntilIdle();
    EXPECT_EQ(check.take(), CancellingLab::cancelled(Lab::first, std::nullopt));
    EXPECT_THAT(lab.feeds.hosts(), IsEmpty());
}

TEST(ACancelledCheckOfAService, duringTheResolutionSendsNothing) {
    CancellingLab lab;
    lab.feeds.resolve("status.example.com", {true, {"192.88.99.1"}, {}}, lab.cancellation());
    EXPECT_EQ(lab.recordOfCancelled(), CancellingLab::cancelled(Lab::first, std::nullopt));
    EXPECT_THAT(lab.feeds.urls(), IsEmpty());
}

TEST(ACancelledCheckOfAService, duringAResolutionThatFailsIsNoUnsafeDestination) {
    CancellingLab lab;
    lab.feeds.resolve("status.example.com", {false, {}, "DNS: Gone"}, lab.cancellation());
    EXPECT_EQ(lab.recordOfCancelled(), CancellingLab::cancelled(Lab::first, std::nullopt));
}

TEST(ACancelledCheckOfAService, byTheResolverAtTheProgramsEndIsARecord) {
    CancellingLab lab;
    lab.feeds.failToResolve("status.example.com", CancellationError());
    EXPECT_EQ(lab.recordOfCancelled(), CancellingLab::cancelled(Lab::first, std::nullopt));
}

TEST(ACancelledCheckOfAService, duringARequestEndsWithIt) {
    CancellingLab lab;
    lab.feeds.fail(Lab::first, CancellationError(), lab.cancellation());
    EXPECT_EQ(lab.recordOfCancelled(), CancellingLab::cancelled(Lab::first, std::nullopt));
    EXPECT_THAT(lab.feeds.urls(), ElementsAre(Lab::first));
}

TEST(ACancelledCheckOfAService, byTheClientAloneEndsTheSame) {
    CancellingLab lab;
    lab.feeds.fail(Lab::first, CancellationError());
    EXPECT_EQ(lab.recordOfCancelled(), CancellingLab::cancelled(Lab::first, std::nullopt));
    EXPECT_THAT(lab.feeds.urls(), ElementsAre(Lab::first));
}

TEST(ACancelledCheckOfAService, isNotToldAsATransportFailure) {
    CancellingLab lab;
    lab.feeds.fail(Lab::first, TransportError("The connection was lost."), lab.cancellation());
    EXPECT_EQ(lab.recordOfCancelled(), CancellingLab::cancelled(Lab::first, std::nullopt));
}

TEST(ACancelledCheckOfAService, dropsAnAnswerThatCameTooLate) {
    CancellingLab lab;
    lab.feeds.answer(Lab::first, {statuspage("none", "Fine"), 200, "application/json"}, lab.cancellation());
    EXPECT_EQ(lab.recordOfCancelled(), CancellingLab::cancelled(Lab::first, std::nullopt));
}

TEST(ACancelledCheckOfAService, discardsEarlierLinesAndWhatAnUnknownStatusSaid) {
    CancellingLab lab;
    lab.feeds.answer(Lab::first, 200, statuspage("purple", "Something odd"));
    lab.feeds.fail(Lab::second, CancellationError(), lab.cancellation());
    EXPECT_EQ(lab.recordOfCancelled(), CancellingLab::cancelled(Lab::second, 200));
}

TEST(ACancelledCheckOfAService, whileItsRequestIsHeldGivesNoRecordBeforeTheRequestEnds) {
    CancellingLab lab;
    const HeldAnswer<FreshHTTPResponse> held;
    ProviderCheckDependencies dependencies = lab.feeds.dependencies();
    struct Fetching {
        static Task<FreshHTTPResponse> wait(HeldAnswer<FreshHTTPResponse> answer) {
            auto waiting = answer.wait();
            co_return co_await waiting;
        }
    };
    dependencies.fetch = [held](HTTPRequest, SecureRequestPolicy) { return Fetching::wait(held); };
    const auto check =
        spawn(lab.executor, lab.checker.checkProvider(Lab::service(), dependencies, std::chrono::seconds(15)));
    lab.executor.runUntilIdle();
    check.cancel();
    lab.executor.runUntilIdle();
    EXPECT_FALSE(check.done());
    held.give({statuspage("none", "Fine"), 200, "application/json"});
    lab.executor.runUntilIdle();
    EXPECT_EQ(check.take(), CancellingLab::cancelled(Lab::first, std::nullopt));
}

} // namespace
} // namespace kestrin
