#include "notifications/NotificationPolicyLease.h"

#include <gtest/gtest.h>
#include <thread>

namespace kestrin {
namespace {

TEST(NotificationPolicyLease, isValidWhenItIsFresh) {
    EXPECT_TRUE(NotificationPolicyLease().isValid());
}

TEST(NotificationPolicyLease, staysInvalidOnceItIs) {
    NotificationPolicyLease lease;
    lease.invalidate();
    EXPECT_FALSE(lease.isValid());
    lease.invalidate();
    EXPECT_FALSE(lease.isValid());
}

TEST(NotificationPolicyLease, isReadOnOneThreadWhileAnotherMakesItInvalid) {
    NotificationPolicyLease lease;
    std::thread reader([&] {
        while (lease.isValid())
            std::this_thread::yield();
    });
    lease.invalidate();
    reader.join();
    EXPECT_FALSE(lease.isValid());
}

} // namespace
} // namespace kestrin
