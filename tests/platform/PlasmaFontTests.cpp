#include "platform/PlasmaFont.h"

#include "platform/SavedEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestrin {

using Font = std::optional<std::string>;

TEST(TheFontInKdeglobals, isThatOfTheGeneralGroup) {
    EXPECT_EQ(fontInKdeglobals("[General]\nfont=Hack,12\n"), Font("Hack,12"));
    EXPECT_EQ(fontInKdeglobals("[General]\nfont=Hack,12"), Font("Hack,12"));
    EXPECT_EQ(fontInKdeglobals("[KDE]\nfont=No\n[General]\r\nx=y\r\n font = Hack,12 \r\n[WM]\nfont=No\n"),
        Font("Hack,12"));
    EXPECT_EQ(fontInKdeglobals("[General][$i]\nfont[$i]=Hack,12\n"), Font("Hack,12"));
    EXPECT_EQ(fontInKdeglobals("[General]\nfont=One\n[KDE]\n[General]\nfont=Two\n"), Font("Two"));
}

TEST(TheFontInKdeglobals, isAbsentWhereItIsNotNamed) {
    EXPECT_EQ(fontInKdeglobals(""), std::nullopt);
    EXPECT_EQ(fontInKdeglobals("font=Hack,12\n"), std::nullopt);
    EXPECT_EQ(fontInKdeglobals("[General]\nfontsize=3\n#font=Hack\nfixed=Hack\nfont\n"), std::nullopt);
    EXPECT_EQ(fontInKdeglobals("[General\nfont=Hack\n"), std::nullopt);
    EXPECT_EQ(fontInKdeglobals("[General][Sub]\nfont=Hack\n"), std::nullopt);
}

class ThePlasmaFont : public testing::Test {
protected:
    void SetUp() override {
        qputenv("XDG_CONFIG_HOME", directory.filePath("user").toUtf8());
        qputenv("XDG_CONFIG_DIRS", directory.filePath("system").toUtf8());
    }

    void write(const QString& folder, const char* content) const {
        QDir(directory.path()).mkpath(folder);
        QFile file(directory.filePath(folder + "/kdeglobals"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir directory;
    test::SavedEnvironment saved{"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"};
};

TEST_F(ThePlasmaFont, isAbsentWithoutFiles) {
    EXPECT_EQ(plasmaFont(), std::nullopt);
}

TEST_F(ThePlasmaFont, isTheUsersBeforeTheSystems) {
    write("system", "[General]\nfont=System,9\n");
    EXPECT_EQ(plasmaFont(), Font("System,9"));
    write("user", "[General]\nColorScheme=BreezeDark\n");
    EXPECT_EQ(plasmaFont(), Font("System,9"));
    write("user", "[General]\nfont=User,12\n");
    EXPECT_EQ(plasmaFont(), Font("User,12"));
}

TEST_F(ThePlasmaFont, isAbsentWhereAFolderStandsInTheFilesPlace) {
    QDir(directory.path()).mkpath("user/kdeglobals");
    EXPECT_EQ(plasmaFont(), std::nullopt);
}

} // namespace kestrin
