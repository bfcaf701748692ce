#include "monitoring/application/ApplicationTheme.h"

#include "appearance/view/KestrinStyle.h"

#include <QApplication>
#include <QLabel>
#include <cmath>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

double luminance(const QColor& colour) {
    const auto part = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

class TheThemedApplication : public testing::Test {
protected:
    static void SetUpTestSuite() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        application = new QApplication(count, arguments);
    }
    static void TearDownTestSuite() { delete application; }

    static inline QApplication* application = nullptr;
};

} // namespace

TEST_F(TheThemedApplication, isLightOrDarkAsTheDesktopSays) {
    EXPECT_FALSE(themeFor({}).isDark());
    EXPECT_TRUE(themeFor({.dark = true}).isDark());
    EXPECT_TRUE(themeFor({.highContrast = true}).isHighContrast());
    EXPECT_TRUE(themeFor({.reducedMotion = true}).reducedMotion());
}

TEST_F(TheThemedApplication, hasABlackOrWhiteWindowInHighContrast) {
    for (const bool dark : {false, true}) {
        applyTheme({.dark = dark, .highContrast = true});
        EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(dark ? Qt::black : Qt::white));
    }
}

TEST_F(TheThemedApplication, takesOverStyleFontAndColours) {
    applyTheme({.fontFamily = "Noto Sans", .fontPoints = 12.5, .dark = true});
    EXPECT_TRUE(qobject_cast<KestrinStyle*>(QApplication::style()));
    EXPECT_EQ(QApplication::font().family(), "Noto Sans");
    EXPECT_DOUBLE_EQ(QApplication::font().pointSizeF(), 12.5);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), themeFor({.dark = true}).color(ColorRole::window));
}

TEST_F(TheThemedApplication, hasWidgetsThatFollow) {
    applyTheme({.fontPoints = 10});
    QLabel label("text");
    label.show();
    applyTheme({.fontPoints = 20, .dark = true});
    QApplication::processEvents();
    EXPECT_DOUBLE_EQ(label.font().pointSizeF(), 20);
    EXPECT_LT(luminance(label.palette().color(QPalette::Window)), 0.05);
}

} // namespace kestrin
