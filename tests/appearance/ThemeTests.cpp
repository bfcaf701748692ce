#include "appearance/view/Theme.h"

#include "appearance/view/ThemedLabel.h"

#include <QApplication>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

QFont fontOf(double points) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(points);
    return font;
}

Theme themeOf(double points, double dpi = 96) {
    return Theme::make({.applicationFont = fontOf(points), .logicalDpi = dpi});
}

} // namespace

TEST(TheScale, isOneForTenPointsAt96Dpi) {
    EXPECT_DOUBLE_EQ(themeOf(10).scale(), 1);
}

TEST(TheScale, growsWithFontAndResolution) {
    EXPECT_DOUBLE_EQ(themeOf(15).scale(), 1.5);
    EXPECT_DOUBLE_EQ(themeOf(10, 192).scale(), 2);
    QFont font = fontOf(10);
    font.setPixelSize(20);
    EXPECT_DOUBLE_EQ(Theme::make({.applicationFont = font}).scale(), 1.5);
}

TEST(TheScale, isNeverBelowNineTenths) {
    EXPECT_DOUBLE_EQ(themeOf(6).scale(), 0.9);
}

TEST(ALength, isScaledAndRounded) {
    EXPECT_EQ(themeOf(10).length(32), 32);
    EXPECT_EQ(themeOf(11).length(14), 15);
    EXPECT_EQ(themeOf(15).length(7), 11);
}

TEST(ALength, isAtLeastOneIfItIsPositive) {
    EXPECT_EQ(themeOf(10).length(0.1), 1);
    EXPECT_EQ(themeOf(10).length(0), 0);
}

TEST(AFont, hasSizeAndWeightOfItsStyle) {
    const Theme theme = themeOf(20);
    EXPECT_DOUBLE_EQ(theme.font(TextStyle::title3).pointSizeF(), 25);
    EXPECT_EQ(theme.font(TextStyle::title3).weight(), QFont::DemiBold);
    EXPECT_DOUBLE_EQ(theme.font(TextStyle::panelTitle).pointSizeF(), 22);
    EXPECT_EQ(theme.font(TextStyle::button).weight(), QFont::Medium);
    EXPECT_DOUBLE_EQ(theme.font(TextStyle::captionBold).pointSizeF(), 18.4);
    EXPECT_EQ(theme.font(TextStyle::captionBold).weight(), QFont::Bold);
    EXPECT_DOUBLE_EQ(theme.font(TextStyle::caption2).pointSizeF(), 17);
    EXPECT_EQ(theme.font(TextStyle::caption2).family(), "DejaVu Sans");
}

TEST(AFont, isNeverSmallerThanEightPoints) {
    EXPECT_DOUBLE_EQ(themeOf(9).font(TextStyle::caption2).pointSizeF(), 8);
    EXPECT_DOUBLE_EQ(themeOf(8).font(TextStyle::caption2Bold).pointSizeF(), 8);
}

TEST(ThemesAreEqual, ifTheirSettingsAre) {
    EXPECT_EQ(themeOf(10), themeOf(10));
    EXPECT_NE(themeOf(10), themeOf(11));
    EXPECT_NE(Theme::make({.dark = true}), Theme::make({}));
}

TEST(TheCurrentTheme, givesTheApplicationFontAndPalette) {
    setCurrentTheme(Theme::make({.dark = true, .applicationFont = fontOf(12)}));
    EXPECT_DOUBLE_EQ(QApplication::font().pointSizeF(), 12);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), currentTheme().color(ColorRole::window));
    EXPECT_EQ(QApplication::palette().color(QPalette::Disabled, QPalette::Text),
        currentTheme().color(ColorRole::disabled));
}

TEST(TheCurrentTheme, isFollowedByLabelsAndControls) {
    QWidget window;
    auto* column = new QVBoxLayout(&window);
    auto* label = new ThemedLabel(TextStyle::caption, ColorRole::secondary);
    label->setText("text");
    auto* button = new QPushButton("Stop");
    column->addWidget(label);
    column->addWidget(button);
    window.show();
    const int height = button->sizeHint().height();

    setCurrentTheme(Theme::make({.dark = true, .applicationFont = fontOf(20)}));
    QApplication::processEvents();
    EXPECT_EQ(button->sizeHint().height(), 2 * height);
    EXPECT_DOUBLE_EQ(label->font().pointSizeF(), 18.4);
    EXPECT_EQ(label->palette().color(QPalette::WindowText), currentTheme().color(ColorRole::secondary));
    EXPECT_EQ(window.palette().color(QPalette::Window), currentTheme().color(ColorRole::window));
}

TEST(TheCurrentTheme, isAnnouncedEvenIfOnlyMotionDiffers) {
    class Listener : public QWidget {
    public:
        int changes = 0;

    protected:
        void changeEvent(QEvent* event) override { changes += event->type() == QEvent::StyleChange ? 1 : 0; }
    } listener;
    setCurrentTheme(Theme::make({.reducedMotion = true, .applicationFont = fontOf(10)}));
    EXPECT_EQ(listener.changes, 1);
    setCurrentTheme(Theme::make({.reducedMotion = true, .applicationFont = fontOf(10)}));
    EXPECT_EQ(listener.changes, 1);
}

TEST(TheCurrentTheme, mayMakeAWidgetDeleteAnother) {
    class Owner : public QWidget {
    public:
        QWidget* other = new QWidget;

    protected:
        void changeEvent(QEvent* event) override {
            if (event->type() == QEvent::StyleChange) delete std::exchange(other, nullptr);
        }
    } first, second;
    setCurrentTheme(Theme::make({.dark = true, .applicationFont = fontOf(10)}));
    EXPECT_EQ(first.other, nullptr);
    EXPECT_EQ(second.other, nullptr);
}

} // namespace kestrin
