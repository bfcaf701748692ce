#include "notifications/InertNotifications.h"

#include "fakes/ManualExecutor.h"
#include "tasks/Spawn.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(InertNotifications, answerEveryCallAtOnceWithTheInertState) {
    ManualExecutor executor;
    InertNotifications notifications;
    NotificationInputs inputs;
    inputs.lease = std::make_shared<NotificationPolicyLease>();
    inputs.policy = {.hasValidConfiguration = true, .targetsAreReadable = true};
    CheckRecord down;
    down.siteID = "a";

    const auto observed = spawn(executor, notifications.observe({observationOf(down)}, inputs));
    const auto refreshed = spawn(executor, notifications.refreshState(inputs));
    executor.runUntilIdle();
    ASSERT_TRUE(observed.done() && refreshed.done());
    EXPECT_EQ(observed.take(), NotificationManagementState());
    EXPECT_EQ(refreshed.take(), NotificationManagementState());
}

} // namespace
} // namespace kestrin
