#include "platform/SingleInstance.h"

#include "platform/EventWait.h"
#include "platform/PrivateBus.h"

#include <gtest/gtest.h>
#include <thread>

namespace kestrin {

using test::waitUntil;
using Result = SingleInstance::Result;

class ASingleInstance : public testing::Test {
protected:
    ASingleInstance() {
        first.onActivate = [this](const std::string& token) { activations.push_back(token); };
    }

    /// A second process stands on a thread of its own: it waits for the first one's answer.
    Result startAgain(const LaunchTokens& tokens) {
        std::optional<Result> result;
        const QDBusConnection connection = bus.connect();
        std::atomic<bool> done = false;
        std::thread second([&] {
            SingleInstance instance(connection);
            result = instance.acquire(tokens);
            done = true;
        });
        EXPECT_TRUE(waitUntil([&] { return done.load(); }));
        second.join();
        return result.value();
    }

    QDBusMessage call(const QString& method, const QVariantList& arguments) {
        return bus.call(
            other, "app.kestrin.Kestrin", "/app/kestrin/Kestrin", "org.freedesktop.Application", method, arguments);
    }

    test::PrivateBus bus;
    QDBusConnection other = bus.connect();
    SingleInstance first{bus.connect()};
    std::vector<std::string> activations;
};

TEST_F(ASingleInstance, isActivatedByASecondStartWhichEnds) {
    ASSERT_EQ(first.acquire({}), Result::Primary);
    EXPECT_EQ(startAgain({}), Result::Secondary);
    ASSERT_TRUE(waitUntil([&] { return !activations.empty(); }));
    EXPECT_EQ(activations, std::vector<std::string>{""});
}

TEST_F(ASingleInstance, isHandedTheTokensOfTheSecondStart) {
    ASSERT_EQ(first.acquire({}), Result::Primary);
    EXPECT_EQ(startAgain({"x11-id", ""}), Result::Secondary);
    EXPECT_EQ(startAgain({"x11-id", "wayland-token"}), Result::Secondary);
    ASSERT_TRUE(waitUntil([&] { return activations.size() == 2; }));
    EXPECT_EQ(activations, (std::vector<std::string>{"x11-id", "wayland-token"}));
}

TEST_F(ASingleInstance, canFollowOneThatEnded) {
    {
        SingleInstance earlier(bus.connect());
        ASSERT_EQ(earlier.acquire({}), Result::Primary);
    }
    EXPECT_EQ(first.acquire({}), Result::Primary);
}

TEST_F(ASingleInstance, countsTheActivationThatTheBusStartedItForAsTheLaunch) {
    ASSERT_EQ(first.acquire({}, Launch::ByActivation), Result::Primary);
    EXPECT_EQ(call("Activate", {QVariantMap()}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("Activate", {QVariantMap{{"activation-token", "second"}}}).type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(waitUntil([&] { return !activations.empty(); }));
    EXPECT_EQ(activations, std::vector<std::string>{"second"});
}

TEST_F(ASingleInstance, takesOpenForActivation) {
    ASSERT_EQ(first.acquire({}), Result::Primary);
    EXPECT_EQ(call("Open", {QStringList{"file:///tmp/x"}, QVariantMap()}).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitUntil([&] { return activations.size() == 1; }));
}

TEST_F(ASingleInstance, runsActionsThatItKnowsAndRefusesOthers) {
    std::vector<std::string> actions;
    first.onAction = [&](const std::string& action, const std::string&) {
        actions.push_back(action);
        return action == "settings";
    };
    ASSERT_EQ(first.acquire({}), Result::Primary);
    EXPECT_EQ(
        call("ActivateAction", {"settings", QVariantList(), QVariantMap()}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("ActivateAction", {"other", QVariantList(), QVariantMap()}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(actions, (std::vector<std::string>{"settings", "other"}));
}

TEST(ASingleInstanceWithoutABus, saysSo) {
    SingleInstance instance(std::nullopt);
    EXPECT_EQ(instance.acquire({}), Result::NoBus);
}

TEST(LaunchTokensOfTheEnvironment, areTakenAwayFromIt) {
    qputenv("DESKTOP_STARTUP_ID", "id");
    qputenv("XDG_ACTIVATION_TOKEN", "token");
    const auto tokens = LaunchTokens::takeFromEnvironment();
    EXPECT_EQ(tokens.startupId, "id");
    EXPECT_EQ(tokens.activationToken, "token");
    EXPECT_FALSE(qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID"));
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST(TheLaunch, isAnActivationWhenTheBusStartedTheProgram) {
    EXPECT_EQ(takeLaunchFromEnvironment(), Launch::Ordinary);
    qputenv("DBUS_STARTER_ADDRESS", "unix:path=/run/bus");
    EXPECT_EQ(takeLaunchFromEnvironment(), Launch::ByActivation);
    EXPECT_FALSE(qEnvironmentVariableIsSet("DBUS_STARTER_ADDRESS"));
}

} // namespace kestrin
