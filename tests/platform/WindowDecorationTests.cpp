#include "platform/WindowDecoration.h"

#include "platform/SavedEnvironment.h"

#include <QLibraryInfo>
#include <QVersionNumber>
#include <gtest/gtest.h>

namespace kestrin {

class TheWindowDecoration : public testing::Test {
protected:
    QByteArray named(const QByteArray& desktop, const QByteArray& before = {}) {
        qputenv("XDG_CURRENT_DESKTOP", desktop);
        qunsetenv("QT_WAYLAND_DECORATION");
        if (!before.isEmpty()) qputenv("QT_WAYLAND_DECORATION", before);
        nameWindowDecoration();
        return qgetenv("QT_WAYLAND_DECORATION");
    }

    test::SavedEnvironment saved{"XDG_CURRENT_DESKTOP", "QT_WAYLAND_DECORATION"};
};

TEST_F(TheWindowDecoration, isGNOMEsOnGNOME) {
    const bool isKnown = QLibraryInfo::version() >= QVersionNumber(6, 8);
    EXPECT_EQ(named("GNOME"), isKnown ? "adwaita" : "");
    EXPECT_EQ(named("ubuntu:GNOME"), isKnown ? "adwaita" : "");
}

TEST_F(TheWindowDecoration, isLeftToQtElsewhere) {
    EXPECT_EQ(named("KDE"), "");
    EXPECT_EQ(named(""), "");
}

TEST_F(TheWindowDecoration, isTheUsersWhereOneIsNamed) {
    EXPECT_EQ(named("GNOME", "bradient"), "bradient");
}

} // namespace kestrin
