#include "platform/AppearanceFollower.h"

#include "platform/EventWait.h"
#include "platform/FakeSettingsPortal.h"
#include "platform/PrivateBus.h"
#include "platform/SavedEnvironment.h"

#include <QDBusVariant>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace kestrin {

using test::waitUntil;

namespace {

const QString appearanceSpace = "org.freedesktop.appearance";
const QString gnomeSpace = "org.gnome.desktop.interface";

class TheDesktopsAppearance : public testing::Test {
protected:
    void SetUp() override {
        qputenv("XDG_CURRENT_DESKTOP", "GNOME");
        qunsetenv("KDE_FULL_SESSION");
        qputenv("XDG_CONFIG_HOME", configuration.path().toUtf8());
        qputenv("XDG_CONFIG_DIRS", configuration.filePath("none").toUtf8());
    }

    void follow() {
        follower = std::make_unique<AppearanceFollower>(bus.connect());
        follower->onChange = [this](const DesktopAppearance& now) { told.push_back(now); };
    }

    [[nodiscard]] bool becomes(const DesktopAppearance& expected) {
        return waitUntil([&] { return follower->appearance() == expected; });
    }

    void writePlasmaFont(const QByteArray& font) const {
        QFile file(configuration.filePath("kdeglobals"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\nfont=" + font + ",-1,5,50,0,0,0,0,0\n");
    }

    test::SavedEnvironment saved{"XDG_CURRENT_DESKTOP", "KDE_FULL_SESSION", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"};
    QTemporaryDir configuration;
    test::PrivateBus bus;
    test::FakeSettingsPortal portal{bus.connect()};
    std::unique_ptr<AppearanceFollower> follower;
    std::vector<DesktopAppearance> told;
};

} // namespace

TEST_F(TheDesktopsAppearance, isThePortalsOnceThatHasAnswered) {
    portal.set(appearanceSpace, "color-scheme", 1U);
    portal.set(appearanceSpace, "contrast", 1U);
    portal.set(gnomeSpace, "font-name", "Cantarell 11");
    portal.set(gnomeSpace, "text-scaling-factor", 2.0);
    portal.set(gnomeSpace, "enable-animations", false);
    portal.start();
    follow();
    EXPECT_EQ(follower->appearance(), DesktopAppearance());
    const DesktopAppearance expected{"Cantarell", 22, true, true, true};
    ASSERT_TRUE(becomes(expected));
    EXPECT_EQ(told, std::vector{expected});
}

TEST_F(TheDesktopsAppearance, followsEachChange) {
    portal.set(gnomeSpace, "font-name", "Cantarell 11");
    portal.start();
    follow();
    ASSERT_TRUE(becomes({.fontFamily = "Cantarell", .fontPoints = 11}));
    portal.set(appearanceSpace, "color-scheme", 1U);
    ASSERT_TRUE(becomes({.fontFamily = "Cantarell", .fontPoints = 11, .dark = true}));
    portal.set(gnomeSpace, "font-name", "Noto Sans Bold 10");
    ASSERT_TRUE(becomes({.fontFamily = "Noto Sans", .fontPoints = 10, .dark = true}));
    portal.set(appearanceSpace, "color-scheme", 2U);
    ASSERT_TRUE(becomes({.fontFamily = "Noto Sans", .fontPoints = 10}));
}

TEST_F(TheDesktopsAppearance, isUnpackedFromVariantsInVariants) {
    portal.set(appearanceSpace, "color-scheme", QVariant::fromValue(QDBusVariant(1U)));
    portal.start();
    follow();
    EXPECT_TRUE(becomes({.dark = true}));
}

TEST_F(TheDesktopsAppearance, isToldOnlyWhenItIsAnother) {
    portal.start();
    follow();
    portal.set(gnomeSpace, "cursor-size", 48);
    portal.set(appearanceSpace, "color-scheme", 2U);
    portal.set(appearanceSpace, "contrast", 1U);
    ASSERT_TRUE(becomes({.highContrast = true}));
    EXPECT_EQ(told.size(), 1U);
}

TEST_F(TheDesktopsAppearance, takesValuesOfAnotherTypeAsNotSet) {
    portal.set(appearanceSpace, "color-scheme", "1");
    portal.set(appearanceSpace, "contrast", true);
    portal.set(gnomeSpace, "font-name", 11);
    portal.set(gnomeSpace, "text-scaling-factor", "2");
    portal.set(gnomeSpace, "enable-animations", 0);
    portal.set(gnomeSpace, "gtk-theme", "HighContrast");
    portal.start();
    follow();
    EXPECT_TRUE(becomes({.highContrast = true}));
}

TEST_F(TheDesktopsAppearance, isReadFromAPortalThatStartsLater) {
    follow();
    portal.set(appearanceSpace, "color-scheme", 1U);
    EXPECT_EQ(follower->appearance(), DesktopAppearance());
    portal.start();
    EXPECT_TRUE(becomes({.dark = true}));
}

TEST_F(TheDesktopsAppearance, isReadAgainWhenThePortalComesBack) {
    portal.start();
    follow();
    ASSERT_TRUE(waitUntil([&] { return portal.questions == 1; }));
    portal.stop();
    portal.set(appearanceSpace, "color-scheme", 1U);
    portal.start();
    EXPECT_TRUE(becomes({.dark = true}));
}

TEST_F(TheDesktopsAppearance, isTheDefaultBesideAPortalThatHangsAndFollowsItsSignals) {
    portal.hangs = true;
    portal.start();
    follow();
    ASSERT_TRUE(waitUntil([&] { return portal.questions == 1; }));
    EXPECT_EQ(follower->appearance(), DesktopAppearance());
    portal.set(appearanceSpace, "color-scheme", 1U);
    EXPECT_TRUE(becomes({.dark = true}));
}

TEST_F(TheDesktopsAppearance, isTheDefaultWithoutABus) {
    follower = std::make_unique<AppearanceFollower>(std::nullopt);
    EXPECT_EQ(follower->appearance(), DesktopAppearance());
}

TEST_F(TheDesktopsAppearance, hasPlasmasFontAtOnceAndAfterEachChange) {
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    writePlasmaFont("Hack,12");
    portal.set(gnomeSpace, "font-name", "Cantarell 11");
    portal.start();
    follow();
    EXPECT_EQ(follower->appearance(), (DesktopAppearance{.fontFamily = "Hack", .fontPoints = 12}));
    ASSERT_TRUE(waitUntil([&] { return portal.questions == 1; }));
    writePlasmaFont("Inter,9");
    portal.set("org.kde.kdeglobals.General", "font", "Inter,9,-1,5,50,0,0,0,0,0");
    ASSERT_TRUE(becomes({.fontFamily = "Inter", .fontPoints = 9}));
    QFile::remove(configuration.filePath("kdeglobals"));
    portal.set("org.kde.kdeglobals.General", "font", "");
    EXPECT_TRUE(becomes({.fontFamily = "Noto Sans", .fontPoints = 10}));
}

} // namespace kestrin
