#include "appearance/view/Capsule.h"
#include "appearance/view/ElidedLabel.h"
#include "appearance/view/SymbolLabel.h"
#include "appearance/view/Theme.h"
#include "appearance/view/WrappedLabel.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMouseEvent>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

const QString longURL = "https://shop.example.com/" + QString(200, 'a');

QString accessibleName(QWidget& widget) {
    return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name);
}

void press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&widget, &event);
}

} // namespace

TEST(AnElidedLabel, showsAShortTextInFullWithoutAToolTip) {
    ElidedLabel label;
    label.setFullText("Example");
    label.resize(label.sizeHint());
    EXPECT_EQ(label.text(), "Example");
    EXPECT_EQ(label.toolTip(), "");
}

TEST(AnElidedLabel, endsInAnEllipsisAndSaysTheRestInItsToolTip) {
    ElidedLabel label;
    label.setFullText(longURL);
    label.resize(120, 20);
    EXPECT_TRUE(label.text().startsWith("https://"));
    EXPECT_TRUE(label.text().endsWith(QChar(0x2026)));
    EXPECT_EQ(label.toolTip(), longURL);
    EXPECT_EQ(accessibleName(label), longURL);
}

TEST(AnElidedLabel, mayBecomeNarrowerThanItsText) {
    ElidedLabel label;
    label.setFullText(longURL);
    EXPECT_LT(label.minimumSizeHint().width(), 100);
    EXPECT_GT(label.sizeHint().width(), 1000);
}

TEST(AnElidedLabel, copiesTheWholeTextAlthoughItShowsAnEllipsis) {
    ElidedLabel label;
    label.setSelectable(true);
    label.setFullText(longURL);
    label.resize(120, 20);
    label.setSelection(0, static_cast<int>(label.text().size()));
    press(label, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), longURL);
}

TEST(ALabel, startsAtTheRightInALayoutFromRightToLeft) {
    ThemedLabel label;
    label.setText("HTTP 200");
    label.resize(300, 20);
    const auto inkAtTheRight = [&] {
        const QImage image = label.grab().toImage().copy(200, 0, 100, 20);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y).lightness() < 128) return true;
        return false;
    };
    EXPECT_FALSE(inkAtTheRight());
    label.setLayoutDirection(Qt::RightToLeft);
    EXPECT_TRUE(inkAtTheRight());
}

TEST(AWrappedLabel, breaksALongWordAndCutsNothingOff) {
    WrappedLabel label;
    label.setText(longURL);
    const int line = label.fontMetrics().height();
    const int width = 200;
    const int lines = label.heightForWidth(width) / line;
    EXPECT_GE(lines * width, label.fontMetrics().horizontalAdvance(longURL));
    EXPECT_GT(lines, 5);
}

TEST(AWrappedLabel, isAsHighAsItsLinesAtEveryWidth) {
    WrappedLabel label;
    label.setText("One two three four five six seven eight nine ten");
    const int line = label.heightForWidth(1000);
    EXPECT_NEAR(line, label.fontMetrics().height(), 1);
    int before = line;
    for (int width = 400; width > 40; width -= 40) {
        const int height = label.heightForWidth(width);
        EXPECT_GE(height, before);
        before = height;
    }
    label.setText("One\ntwo");
    EXPECT_EQ(label.heightForWidth(1000), 2 * line);
}

TEST(AWrappedLabel, paintsInItsLastLine) {
    WrappedLabel label;
    label.setText(longURL);
    label.resize(200, label.heightForWidth(200));
    const QImage image = label.grab().toImage();
    const int line = label.fontMetrics().height();
    const QImage last = image.copy(0, image.height() - line, image.width(), line);
    bool inked = false;
    for (int y = 0; y < last.height(); ++y)
        for (int x = 0; x < last.width(); ++x)
            inked |= last.pixelColor(x, y).lightness() < 128;
    EXPECT_TRUE(inked);
}

TEST(AWrappedLabel, canBeSelectedByKeyboard) {
    WrappedLabel label;
    label.setText("One two");
    press(label, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(label.selection(), "");
    label.setSelectable(true);
    press(label, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(label.selection(), "One two");
    press(label, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "One two");
    press(label, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(label.selection(), "One tw");
}

TEST(AWrappedLabel, canBeSelectedByMouse) {
    WrappedLabel label;
    label.setSelectable(true);
    label.setText("One two");
    label.resize(300, label.heightForWidth(300));
    const auto send = [&](QEvent::Type type, double x) {
        QMouseEvent event(
            type, QPointF(x, 5), label.mapToGlobal(QPointF(x, 5)), Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(&label, &event);
    };
    send(QEvent::MouseButtonPress, 0);
    send(QEvent::MouseMove, 290);
    EXPECT_EQ(label.selection(), "One two");
    send(QEvent::MouseButtonDblClick, 5);
    EXPECT_EQ(label.selection(), "One");
}

TEST(AWrappedLabel, hasItsTextAsAccessibleName) {
    WrappedLabel label;
    label.setText("One two");
    EXPECT_EQ(accessibleName(label), "One two");
}

TEST(ACapsule, hasItsWordAsAccessibleNameAndTheColorsOfItsState) {
    Capsule capsule;
    capsule.setText("UP");
    capsule.setState(StateColor::green);
    capsule.resize(capsule.sizeHint());
    EXPECT_EQ(accessibleName(capsule), "UP");
    EXPECT_EQ(capsule.grab().toImage().pixelColor(capsule.height() / 2, 2),
        currentTheme().stateTint(StateColor::green, 0.12));
}

TEST(ASymbolLabel, isHiddenFromScreenReaders) {
    SymbolLabel label("globe");
    label.show();
    const QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&label);
    EXPECT_TRUE(interface->state().invisible);
    EXPECT_EQ(interface->text(QAccessible::Name), "");

    ThemedLabel text;
    text.show();
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(&text)->state().invisible);
}

TEST(ASymbolLabel, hasTheMarkColorOfAState) {
    SymbolLabel label("circle.fill");
    label.setColor(StateColor::red);
    label.resize(label.sizeHint());
    EXPECT_EQ(label.grab().toImage().pixelColor(8, 8), currentTheme().stateMark(StateColor::red));
}

} // namespace kestrin
