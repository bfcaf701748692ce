#include "platform/DBusMenu.h"

#include "platform/EventWait.h"
#include "platform/PrivateBus.h"

#include <gtest/gtest.h>

namespace kestrin {

using test::waitUntil;

class TheTrayMenu : public testing::Test {
protected:
    TheTrayMenu() {
        program.registerObject("/MenuBar", &object, QDBusConnection::ExportAdaptors);
        menu->onClicked = [this](const std::string& id) { clicked.push_back(id); };
        QObject::connect(menu, &DBusMenu::LayoutUpdated,
            [this](uint revision, int parent) { layouts.emplace_back(revision, parent); });
        QObject::connect(menu, &DBusMenu::ItemsPropertiesUpdated,
            [this](const DBusMenuItemList& updated, const DBusMenuItemKeysList&) { changed.append(updated); });
        menu->setEntries(entries);
        layouts.clear();
    }

    QDBusMessage call(const QString& method, const QVariantList& arguments) {
        return bus.call(panel, program.baseService(), "/MenuBar", "com.canonical.dbusmenu", method, arguments);
    }

    DBusMenuLayout layout() {
        const auto answer = call("GetLayout", {0, -1, QStringList()});
        return qdbus_cast<DBusMenuLayout>(answer.arguments().value(1));
    }

    QStringList labels() {
        QStringList result;
        for (const DBusMenuLayout& child : layout().children)
            result.append(child.properties.value("label", child.properties.value("type")).toString());
        return result;
    }

    QDBusMessage click(int id) { return call("Event", {id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0u}); }

    int idOf(qsizetype line) { return layout().children.value(line).id; }

    /// Lets everything that is on its way arrive: clicks are told in the order of arrival.
    std::vector<std::string> clicksBefore(qsizetype line) {
        const auto before = clicked.size();
        (void)click(idOf(line));
        EXPECT_TRUE(waitUntil([&] { return clicked.size() > before; }));
        return clicked;
    }

    test::PrivateBus bus;
    QDBusConnection program = bus.connect();
    QDBusConnection panel = bus.connect();
    QObject object;
    DBusMenu* menu = new DBusMenu(program, &object);
    std::vector<TrayMenuEntry> entries{{"open", "Open dashboard"}, {"start", "Start"}, {"", "", true, true},
        {"settings", "Settings…", false}, {"quit", "Quit"}};
    std::vector<std::string> clicked;
    std::vector<std::pair<uint, int>> layouts;
    DBusMenuItemList changed;
};

TEST_F(TheTrayMenu, isReadBackInItsOrder) {
    EXPECT_EQ(labels(), (QStringList{"Open dashboard", "Start", "separator", "Settings…", "Quit"}));
    EXPECT_EQ(layout().properties["children-display"], "submenu");
    EXPECT_EQ(layout().children[3].properties["enabled"], false);
    EXPECT_EQ(layout().children[4].properties["enabled"], true);
}

TEST_F(TheTrayMenu, givesOnlyThePropertiesAskedFor) {
    const auto answer = call("GetLayout", {0, 1, QStringList{"enabled"}});
    const auto first = qdbus_cast<DBusMenuLayout>(answer.arguments().value(1)).children.value(0);
    EXPECT_EQ(first.properties.keys(), QStringList{"enabled"});
}

TEST_F(TheTrayMenu, givesNoEntriesAtDepthZero) {
    const auto answer = call("GetLayout", {0, 0, QStringList()});
    EXPECT_TRUE(qdbus_cast<DBusMenuLayout>(answer.arguments().value(1)).children.isEmpty());
}

TEST_F(TheTrayMenu, answersAnUnknownEntryWithAnError) {
    EXPECT_EQ(call("GetLayout", {99, -1, QStringList()}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("GetProperty", {99, "label"}).type(), QDBusMessage::ErrorMessage);
}

TEST_F(TheTrayMenu, tellsTheChosenEntryOnce) {
    EXPECT_EQ(click(idOf(1)).type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(waitUntil([&] { return !clicked.empty(); }));
    EXPECT_EQ(clicked, std::vector<std::string>{"start"});
}

TEST_F(TheTrayMenu, dropsClicksOnDisabledEntriesSeparatorsAndHovering) {
    (void)click(idOf(2));
    (void)click(idOf(3));
    (void)call("Event", {idOf(0), "hovered", QVariant::fromValue(QDBusVariant(0)), 0u});
    EXPECT_EQ(clicksBefore(4), std::vector<std::string>{"quit"});
}

TEST_F(TheTrayMenu, raisesItsRevisionWhenEntriesComeAndGo) {
    const uint before = call("GetLayout", {0, -1, QStringList()}).arguments().value(0).toUInt();
    entries.erase(entries.begin());
    menu->setEntries(entries);
    const uint after = call("GetLayout", {0, -1, QStringList()}).arguments().value(0).toUInt();
    EXPECT_GT(after, before);
    EXPECT_EQ(layouts, (std::vector{std::pair{after, 0}}));
    EXPECT_EQ(labels(), (QStringList{"Start", "separator", "Settings…", "Quit"}));
}

TEST_F(TheTrayMenu, tellsAChangedLabelWithoutANewLayout) {
    entries[1].label = "Beginning";
    menu->setEntries(entries);
    EXPECT_TRUE(layouts.empty());
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0].id, idOf(1));
    EXPECT_EQ(changed[0].properties["label"], "Beginning");
}

TEST_F(TheTrayMenu, staysSilentWhenNothingChanges) {
    menu->setEntries(entries);
    EXPECT_TRUE(layouts.empty());
    EXPECT_TRUE(changed.isEmpty());
}

TEST_F(TheTrayMenu, neverSendsAClickOnAnOldMenuToAnotherEntry) {
    const int start = idOf(1);
    entries[1] = {"stop", "Stop"};
    menu->setEntries(entries);
    (void)click(start);
    EXPECT_EQ(clicksBefore(1), std::vector<std::string>{"stop"});
}

TEST_F(TheTrayMenu, showsUnderscoresAsTheyStand) {
    menu->setEntries({{"a", "a_b"}});
    EXPECT_EQ(labels(), QStringList{"a__b"});
}

TEST_F(TheTrayMenu, answersGroupsOfQuestionsAndEvents) {
    const auto properties =
        call("GetGroupProperties", {QVariant::fromValue(QList<int>{idOf(4), 99}), QStringList()});
    const auto items = qdbus_cast<DBusMenuItemList>(properties.arguments().value(0));
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0].properties["label"], "Quit");

    const DBusMenuEventList events{{idOf(0), "clicked", QDBusVariant(0), 0}, {99, "clicked", QDBusVariant(0), 0}};
    const auto unknown = call("EventGroup", {QVariant::fromValue(events)});
    EXPECT_EQ(qdbus_cast<QList<int>>(unknown.arguments().value(0)), QList<int>{99});
    ASSERT_TRUE(waitUntil([&] { return !clicked.empty(); }));
    EXPECT_EQ(clicked, std::vector<std::string>{"open"});

    EXPECT_EQ(call("AboutToShow", {0}).arguments(), QVariantList{false});
    const auto shown = call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 99})});
    EXPECT_EQ(qdbus_cast<QList<int>>(shown.arguments().value(1)), QList<int>{99});
}

TEST_F(TheTrayMenu, tellsItsVersionAndState) {
    const auto property = [&](const QString& name) {
        return bus.property(panel, program.baseService(), "/MenuBar", "com.canonical.dbusmenu", name);
    };
    EXPECT_EQ(property("Version"), 3u);
    EXPECT_EQ(property("Status"), "normal");
    EXPECT_EQ(property("TextDirection"), "ltr");
}

} // namespace kestrin
