#include "monitoring/application/ApplicationAppearance.h"

#include <QApplication>
#include <QLabel>
#include <QStyle>
#include <algorithm>
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

/// The ratio of WCAG, from 1 to 21.
double contrast(const QColor& one, const QColor& other) {
    const double ratio = (luminance(one) + 0.05) / (luminance(other) + 0.05);
    return std::max(ratio, 1 / ratio);
}

constexpr std::pair<QPalette::ColorRole, QPalette::ColorRole> texts[] = {{QPalette::WindowText, QPalette::Window},
    {QPalette::Text, QPalette::Base}, {QPalette::ButtonText, QPalette::Button},
    {QPalette::ToolTipText, QPalette::ToolTipBase}, {QPalette::PlaceholderText, QPalette::Base},
    {QPalette::HighlightedText, QPalette::Highlight}, {QPalette::Link, QPalette::Window}};

void expectContrast(const DesktopAppearance& appearance, double least) {
    const QPalette palette = paletteFor(appearance);
    for (const auto& [text, ground] : texts)
        EXPECT_GE(contrast(palette.color(text), palette.color(ground)), least) << text << " on " << ground;
}

class TheApplication : public testing::Test {
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

TEST(ThePalette, isLightOrDark) {
    EXPECT_GT(luminance(paletteFor({}).color(QPalette::Window)), 0.8);
    EXPECT_LT(luminance(paletteFor({.dark = true}).color(QPalette::Window)), 0.05);
}

TEST(ThePalette, canBeReadInEveryRole) {
    expectContrast({}, 4.5);
    expectContrast({.dark = true}, 4.5);
}

TEST(ThePalette, isBlackAndWhiteInHighContrast) {
    for (const bool dark : {false, true}) {
        const QPalette palette = paletteFor({.dark = dark, .highContrast = true});
        EXPECT_EQ(palette.color(QPalette::Window), QColor(dark ? Qt::black : Qt::white));
        EXPECT_EQ(palette.color(QPalette::WindowText), QColor(dark ? Qt::white : Qt::black));
    }
}

TEST_F(TheApplication, takesOverStyleFontAndColours) {
    applyAppearance({.fontFamily = "Noto Sans", .fontPoints = 12.5, .dark = true});
    EXPECT_EQ(QApplication::style()->name(), "fusion");
    EXPECT_EQ(QApplication::font().family(), "Noto Sans");
    EXPECT_DOUBLE_EQ(QApplication::font().pointSizeF(), 12.5);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), paletteFor({.dark = true}).color(QPalette::Window));
}

TEST_F(TheApplication, hasWidgetsThatFollow) {
    applyAppearance({.fontPoints = 10});
    QLabel label("text");
    label.show();
    applyAppearance({.fontPoints = 20, .dark = true});
    QApplication::processEvents();
    EXPECT_DOUBLE_EQ(label.font().pointSizeF(), 20);
    EXPECT_LT(luminance(label.palette().color(QPalette::Window)), 0.05);
}

} // namespace kestrin
