#include "platform/StatusNotifierItem.h"

#include "platform/DBusMenuTypes.h"
#include "platform/EventWait.h"
#include "platform/FakeTrayWatcher.h"
#include "platform/PrivateBus.h"
#include "platform/StatusNotifierTypes.h"

#include <gtest/gtest.h>
#include <memory>

namespace kestrin {

using test::waitUntil;

class TheTrayIcon : public testing::Test {
protected:
    TheTrayIcon() {
        icon->onHostedChanged = [this](bool hosted) { told.push_back(hosted); };
        icon->onActivate = [this](std::optional<QPoint> place) { clicks.push_back(place); };
    }

    QVariant property(const QString& name) {
        return bus.property(
            panel, StatusNotifierItem::serviceName(), "/StatusNotifierItem", "org.kde.StatusNotifierItem", name);
    }

    QDBusMessage call(const QString& method, const QVariantList& arguments) {
        return bus.call(panel, StatusNotifierItem::serviceName(), "/StatusNotifierItem",
            "org.kde.StatusNotifierItem", method, arguments);
    }

    test::PrivateBus bus;
    QDBusConnection panel = bus.connect();
    test::FakeTrayWatcher watcher{panel};
    std::unique_ptr<StatusNotifierItem> icon = std::make_unique<StatusNotifierItem>(bus.connect());
    std::vector<bool> told;
    std::vector<std::optional<QPoint>> clicks;
};

TEST_F(TheTrayIcon, registersWithAPanelThatIsThereFirst) {
    watcher.start();
    icon->show();
    ASSERT_TRUE(waitUntil([&] { return icon->isHosted(); }));
    EXPECT_EQ(watcher.registered, QStringList{StatusNotifierItem::serviceName()});
    EXPECT_EQ(told, std::vector{true});
}

TEST_F(TheTrayIcon, saysThatNobodyShowsItAndRegistersWithAPanelThatComesLater) {
    icon->show();
    ASSERT_TRUE(waitUntil([&] { return told == std::vector{false}; }));
    watcher.start();
    ASSERT_TRUE(waitUntil([&] { return icon->isHosted(); }));
    EXPECT_EQ(watcher.registered, QStringList{StatusNotifierItem::serviceName()});
}

TEST_F(TheTrayIcon, registersAgainWithAPanelThatRestarts) {
    watcher.start();
    icon->show();
    ASSERT_TRUE(waitUntil([&] { return icon->isHosted(); }));
    watcher.stop();
    ASSERT_TRUE(waitUntil([&] { return !icon->isHosted(); }));
    watcher.registered.clear();
    watcher.start();
    ASSERT_TRUE(waitUntil([&] { return icon->isHosted(); }));
    EXPECT_EQ(watcher.registered, QStringList{StatusNotifierItem::serviceName()});
    EXPECT_EQ(told, (std::vector{true, false, true}));
}

TEST_F(TheTrayIcon, isNotHostedUntilTheWatcherHasAHost) {
    watcher.setHost(false);
    watcher.start();
    icon->show();
    ASSERT_TRUE(waitUntil([&] { return told == std::vector{false}; }));
    EXPECT_EQ(watcher.registered.size(), 1);
    watcher.setHost(true);
    ASSERT_TRUE(waitUntil([&] { return icon->isHosted(); }));
    watcher.setHost(false);
    ASSERT_TRUE(waitUntil([&] { return !icon->isHosted(); }));
    EXPECT_EQ(watcher.registered.size(), 1);
}

TEST_F(TheTrayIcon, triesAgainWhenThePanelOwnsItsNameBeforeItServesIt) {
    watcher.start(false);
    icon->show();
    ASSERT_TRUE(waitUntil([&] { return told == std::vector{false}; }));
    watcher.serve();
    EXPECT_TRUE(waitUntil([&] { return icon->isHosted(); }));
}

TEST_F(TheTrayIcon, takesItsNameFromTheBusWhenHiddenAndRegistersAgainWhenShown) {
    watcher.start();
    icon->show();
    ASSERT_TRUE(waitUntil([&] { return icon->isHosted(); }));
    icon->hide();
    EXPECT_FALSE(icon->isHosted());
    ASSERT_TRUE(waitUntil([&] {
        return !bus.call(panel, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                       "NameHasOwner", {StatusNotifierItem::serviceName()})
                    .arguments()
                    .value(0)
                    .toBool();
    }));
    icon->show();
    ASSERT_TRUE(waitUntil([&] { return icon->isHosted(); }));
    EXPECT_EQ(watcher.registered.size(), 2);
}

TEST_F(TheTrayIcon, tellsThePanelWhatItIs) {
    icon->show();
    EXPECT_EQ(property("Category"), "ApplicationStatus");
    EXPECT_EQ(property("Id"), "kestrin");
    EXPECT_EQ(property("Title"), "Kestrin");
    EXPECT_EQ(property("Status"), "Active");
    EXPECT_EQ(property("ItemIsMenu"), false);
    EXPECT_EQ(property("IconAccessibleDesc"), "Kestrin: Harbor Watch");
    EXPECT_EQ(property("Menu").value<QDBusObjectPath>().path(), "/MenuBar");
    EXPECT_EQ(qdbus_cast<StatusNotifierToolTip>(property("ToolTip")).title, "Kestrin: Harbor Watch");
}

TEST_F(TheTrayIcon, carriesAPictureForEverySizeOfPanel) {
    icon->show();
    QList<int> sizes;
    for (const auto& pixmap : qdbus_cast<StatusNotifierPixmapList>(property("IconPixmap"))) {
        EXPECT_EQ(pixmap.width, pixmap.height);
        EXPECT_EQ(pixmap.bytes.size(), 4 * pixmap.width * pixmap.height);
        sizes.append(pixmap.width);
    }
    EXPECT_EQ(sizes, (QList<int>{16, 22, 24, 32, 48}));
}

TEST_F(TheTrayIcon, tellsWhereItWasClicked) {
    icon->show();
    EXPECT_EQ(call("Activate", {1265, 15}).type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(waitUntil([&] { return !clicks.empty(); }));
    EXPECT_EQ(clicks, std::vector{std::optional(QPoint(1265, 15))});
}

TEST_F(TheTrayIcon, tellsAClickWithoutAPlaceWhenThePanelKnowsNone) {
    icon->show();
    EXPECT_EQ(call("Activate", {0, 0}).type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(waitUntil([&] { return !clicks.empty(); }));
    EXPECT_EQ(clicks.front(), std::nullopt);
}

TEST_F(TheTrayIcon, handsOutTheActivationTokenOnce) {
    icon->show();
    EXPECT_EQ(call("ProvideXdgActivationToken", {"token-1"}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(icon->takeActivationToken(), "token-1");
    EXPECT_EQ(icon->takeActivationToken(), "");
}

TEST_F(TheTrayIcon, canBeDestroyedByItsOwnCallback) {
    icon->onActivate = [this](std::optional<QPoint>) { icon.reset(); };
    icon->show();
    EXPECT_EQ(call("Activate", {5, 5}).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitUntil([&] { return icon == nullptr; }));
}

TEST_F(TheTrayIcon, servesItsMenuToThePanelAndTellsWhatWasChosen) {
    std::vector<std::string> chosen;
    icon->onMenu = [&](const std::string& id) { chosen.push_back(id); };
    icon->setMenu({{"open", "Open dashboard"}, {"quit", "Quit"}});
    icon->show();
    const auto answer = bus.call(panel, StatusNotifierItem::serviceName(), "/MenuBar", "com.canonical.dbusmenu",
        "GetLayout", {0, -1, QStringList()});
    const auto layout = qdbus_cast<DBusMenuLayout>(answer.arguments().value(1));
    ASSERT_EQ(layout.children.size(), 2);
    EXPECT_EQ(layout.children[1].properties["label"], "Quit");
    const auto clicked = bus.call(panel, StatusNotifierItem::serviceName(), "/MenuBar", "com.canonical.dbusmenu",
        "Event", {layout.children[1].id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0u});
    EXPECT_EQ(clicked.type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(waitUntil([&] { return !chosen.empty(); }));
    EXPECT_EQ(chosen, std::vector<std::string>{"quit"});
}

} // namespace kestrin
