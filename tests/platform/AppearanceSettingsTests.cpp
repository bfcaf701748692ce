#include "platform/AppearanceSettings.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace kestrin {

namespace {

struct FontExample {
    AppearanceSettings settings;
    std::string family;
    double points;
};

void expectEach(std::initializer_list<FontExample> examples) {
    int number = 0;
    for (const FontExample& example : examples) {
        const DesktopAppearance found = desktopAppearance(example.settings);
        EXPECT_EQ(found.fontFamily, example.family) << "example " << number;
        EXPECT_DOUBLE_EQ(found.fontPoints, example.points) << "example " << number;
        ++number;
    }
}

AppearanceSettings gnome(double textScale) {
    return {.desktop = DesktopKind::Gnome, .gnomeFont = "Cantarell 11", .textScale = textScale};
}

} // namespace

TEST(TheKindOfDesktop, isAmongItsNames) {
    EXPECT_EQ(desktopKind("GNOME", false), DesktopKind::Gnome);
    EXPECT_EQ(desktopKind("ubuntu:GNOME", false), DesktopKind::Gnome);
    EXPECT_EQ(desktopKind("GNOME-Classic:GNOME", false), DesktopKind::Gnome);
    EXPECT_EQ(desktopKind("GNOME-Flashback", false), DesktopKind::Gnome);
    EXPECT_EQ(desktopKind("KDE", false), DesktopKind::Plasma);
    EXPECT_EQ(desktopKind("", true), DesktopKind::Plasma);
    EXPECT_EQ(desktopKind("XFCE", false), DesktopKind::Other);
    EXPECT_EQ(desktopKind("X-Cinnamon", false), DesktopKind::Other);
    EXPECT_EQ(desktopKind("::", false), DesktopKind::Other);
    EXPECT_EQ(desktopKind("", false), DesktopKind::Other);
}

TEST(TheFont, isThatOfGNOMETimesItsTextScale) {
    expectEach({
        {gnome(1), "Cantarell", 11},
        {gnome(1.25), "Cantarell", 13.75},
        {gnome(2), "Cantarell", 22},
        {{.desktop = DesktopKind::Gnome, .textScale = 1.5}, "Sans Serif", 15},
        {{.desktop = DesktopKind::Gnome, .gnomeFont = "damaged"}, "Sans Serif", 10},
        {{.desktop = DesktopKind::Gnome, .gnomeFont = "Bold 12"}, "Sans Serif", 12},
    });
}

TEST(TheFont, isNotScaledByAScaleThatMakesNoSense) {
    const double infinity = std::numeric_limits<double>::infinity();
    expectEach({
        {gnome(0), "Cantarell", 11},
        {gnome(-1), "Cantarell", 11},
        {gnome(std::nan("")), "Cantarell", 11},
        {gnome(infinity), "Cantarell", 11},
        {gnome(1000), "Cantarell", 33},
        {gnome(0.0001), "Cantarell", 5.5},
    });
}

TEST(TheFont, isNotScaledTwiceWhereTheXServerScalesEverything) {
    AppearanceSettings settings = gnome(1.5);
    settings.hasXResolution = true;
    expectEach({{settings, "Cantarell", 11}});
}

TEST(TheFont, isThatOfPlasma) {
    expectEach({
        {{.desktop = DesktopKind::Plasma, .plasmaFont = "Hack,12,-1,5,50,0,0,0,0,0"}, "Hack", 12},
        {{.desktop = DesktopKind::Plasma}, "Noto Sans", 10},
        {{.desktop = DesktopKind::Plasma, .plasmaFont = "damaged"}, "Noto Sans", 10},
        {{.desktop = DesktopKind::Plasma, .gnomeFont = "Cantarell 11", .textScale = 2, .xFont = "Sans 9"},
            "Noto Sans", 10},
    });
}

TEST(TheFont, isThatOfXElsewhereAndNeverGNOMEsDefault) {
    expectEach({
        {{.gnomeFont = "Cantarell 11", .textScale = 2, .xFont = "Noto Sans 9"}, "Noto Sans", 9},
        {{.gnomeFont = "Cantarell 11", .textScale = 2}, "Sans Serif", 10},
        {{.xFont = "damaged"}, "Sans Serif", 10},
    });
}

TEST(TheFont, isNeverTooSmallOrTooLargeToBeUsed) {
    expectEach({
        {{.xFont = "Sans 1"}, "Sans", 5},
        {{.xFont = "Sans 150"}, "Sans", 72},
    });
}

TEST(TheColours, areDarkOnlyWhenThatIsPreferred) {
    EXPECT_FALSE(desktopAppearance({}).dark);
    EXPECT_TRUE(desktopAppearance({.colorScheme = 1}).dark);
    EXPECT_FALSE(desktopAppearance({.colorScheme = 2}).dark);
    EXPECT_FALSE(desktopAppearance({.colorScheme = 3}).dark);
}

TEST(TheColours, haveHighContrastByTheSettingOrByGNOMEsTheme) {
    EXPECT_FALSE(desktopAppearance({}).highContrast);
    EXPECT_TRUE(desktopAppearance({.contrast = 1}).highContrast);
    EXPECT_FALSE(desktopAppearance({.contrast = 2}).highContrast);
    EXPECT_TRUE(desktopAppearance({.gtkTheme = "HighContrastInverse"}).highContrast);
    EXPECT_FALSE(desktopAppearance({.gtkTheme = "Adwaita"}).highContrast);
}

TEST(Motion, isReducedWhereAnimationsAreOff) {
    EXPECT_FALSE(desktopAppearance({}).reducedMotion);
    EXPECT_TRUE(desktopAppearance({.animations = false}).reducedMotion);
}

} // namespace kestrin
