#include "appearance/view/KestrinStyle.h"
#include "appearance/view/Theme.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace {

/// Every test starts with the light theme in a font of 10 points.
class FreshTheme : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPointSizeF(10);
        kestrin::setCurrentTheme(kestrin::Theme::make({.applicationFont = font}));
    }
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    const QApplication application(argc, argv);
    QApplication::setStyle(new kestrin::KestrinStyle);
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new FreshTheme);
    return RUN_ALL_TESTS();
}
