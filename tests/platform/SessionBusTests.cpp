#include "platform/SessionBus.h"

#include "platform/PrivateBus.h"
#include "platform/SavedEnvironment.h"

#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

constexpr auto variable = "DBUS_SESSION_BUS_ADDRESS";

class TheSessionBus : public testing::Test {
protected:
    test::SavedEnvironment saved{variable, "XDG_RUNTIME_DIR"};
};

} // namespace

TEST_F(TheSessionBus, isFoundByItsAddress) {
    const test::PrivateBus bus;
    qputenv(variable, bus.address().toUtf8());
    EXPECT_TRUE(prepareSessionBus().has_value());
    EXPECT_EQ(qgetenv(variable), bus.address().toUtf8());
}

TEST_F(TheSessionBus, isFoundBehindAnEscapedAddressAndADeadOne) {
    const test::PrivateBus bus;
    const QByteArray escaped = bus.address().toUtf8().replace("/socket", "/%73ocket,guid=00");
    qputenv(variable, "unix:path=/nowhere/at/all;" + escaped);
    EXPECT_TRUE(prepareSessionBus().has_value());
}

TEST_F(TheSessionBus, isFoundInTheRuntimeDirectoryWithoutAnAddress) {
    const test::PrivateBus bus;
    const QTemporaryDir runtime;
    ASSERT_TRUE(QFile::link(bus.address().mid(10), runtime.filePath("bus")));
    qunsetenv(variable);
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    EXPECT_TRUE(prepareSessionBus().has_value());
}

TEST_F(TheSessionBus, isMissedWithoutAddressAndKeptFromBeingStarted) {
    const QTemporaryDir runtime;
    qunsetenv(variable);
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    const auto found = prepareSessionBus();
    ASSERT_FALSE(found.has_value());
    EXPECT_EQ(found.error(), "There is no session bus.");
    EXPECT_EQ(qgetenv(variable), "disabled:");
}

TEST_F(TheSessionBus, isMissedBehindAnAddressThatNobodyServes) {
    qputenv(variable, "unix:path=/nowhere/at/all");
    const auto found = prepareSessionBus();
    ASSERT_FALSE(found.has_value());
    EXPECT_EQ(found.error(), "The session bus does not answer.");
}

TEST_F(TheSessionBus, isGivenUpWhenItHangs) {
    const test::PrivateBus bus;
    ASSERT_EQ(kill(static_cast<pid_t>(bus.processId()), SIGSTOP), 0);
    qputenv(variable, bus.address().toUtf8());
    const auto found = prepareSessionBus();
    ASSERT_FALSE(found.has_value());
    EXPECT_EQ(found.error(), "The session bus does not answer.");
}

TEST_F(TheSessionBus, opensAsAnErrorWhenThereIsNone) {
    qputenv(variable, "disabled:");
    EXPECT_FALSE(openSessionBus().has_value());
}

TEST(ANameOnTheBus, isTakenForAllButItsOwner) {
    test::PrivateBus bus;
    const QDBusConnection first = bus.connect();
    const QDBusConnection second = bus.connect();
    EXPECT_EQ(claimName(first, "org.example.Name"), NameClaim::Owned);
    EXPECT_EQ(claimName(first, "org.example.Name"), NameClaim::Owned);
    EXPECT_EQ(claimName(second, "org.example.Name"), NameClaim::Taken);
    EXPECT_EQ(claimName(second, "not a name"), NameClaim::Failed);
}

} // namespace kestrin
