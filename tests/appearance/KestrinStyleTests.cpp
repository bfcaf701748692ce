#include "appearance/view/KestrinStyle.h"

#include "appearance/view/ButtonKind.h"
#include "appearance/view/SegmentWell.h"
#include "appearance/view/Theme.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleOption>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

QImage drawnButton(ButtonKind kind, QStyle::State state) {
    QPushButton button("Stop");
    setButtonKind(&button, kind);
    QStyleOptionButton option;
    option.initFrom(&button);
    option.rect = QRect(QPoint(), button.sizeHint());
    option.text = button.text();
    option.state = state;
    QImage image(option.rect.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(currentTheme().color(ColorRole::surface));
    QPainter painter(&image);
    button.style()->drawControl(QStyle::CE_PushButton, &option, &painter, &button);
    return image;
}

QColor fillOf(const QImage& button) {
    return button.pixelColor(button.width() / 2, 3);
}

class TwoButtons : public testing::Test {
protected:
    TwoButtons() {
        auto* column = new QVBoxLayout(&window);
        column->setContentsMargins(20, 20, 20, 20);
        column->addWidget(first);
        column->addWidget(second);
        window.show();
        window.activateWindow();
        QApplication::processEvents();
        first->setFocus();
    }

    void press(int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
        QApplication::processEvents();
    }
    void click(QWidget* widget) {
        QMouseEvent event(QEvent::MouseButtonPress, QPointF(2, 2), widget->mapToGlobal(QPointF(2, 2)),
            Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(widget, &event);
        QApplication::processEvents();
    }
    /// Whether the ring's colour is where it belongs: three pixels left of the button.
    bool isRinged(const QWidget* button) {
        const QPoint place = button->mapTo(&window, QPoint(-3, button->height() / 2));
        return window.grab().toImage().pixelColor(place) == currentTheme().color(ColorRole::accent);
    }

    QWidget window;
    QPushButton* first = new QPushButton("First");
    QPushButton* second = new QPushButton("Second");
};

} // namespace

TEST(AButton, isFilledByItsKindAndState) {
    const Theme& theme = currentTheme();
    const QStyle::State normal = QStyle::State_Enabled;
    const QStyle::State hovered = normal | QStyle::State_MouseOver;
    const QStyle::State pressed = hovered | QStyle::State_Sunken;
    const auto expect = [&](ButtonKind kind, QStyle::State state, ColorRole role) {
        EXPECT_EQ(fillOf(drawnButton(kind, state)), theme.color(role)) << static_cast<int>(kind) << " " << state;
    };
    expect(ButtonKind::plain, normal, ColorRole::fill);
    expect(ButtonKind::plain, hovered, ColorRole::fillHover);
    expect(ButtonKind::plain, pressed, ColorRole::fillPressed);
    expect(ButtonKind::accent, normal, ColorRole::accentFill);
    expect(ButtonKind::accent, hovered, ColorRole::accentFillHover);
    expect(ButtonKind::accent, pressed, ColorRole::accentFillPressed);
    expect(ButtonKind::accent, {}, ColorRole::fill);
    expect(ButtonKind::flat, normal, ColorRole::surface);
    expect(ButtonKind::flat, hovered, ColorRole::fill);
    expect(ButtonKind::flat, {}, ColorRole::surface);
    expect(ButtonKind::segment, normal, ColorRole::surface);
    expect(ButtonKind::segment, normal | QStyle::State_On, ColorRole::raised);
    expect(ButtonKind::destructive, normal, ColorRole::danger);
}

TEST(AButton, looksDisabled) {
    for (const ButtonKind kind : {ButtonKind::plain, ButtonKind::accent, ButtonKind::flat, ButtonKind::link})
        EXPECT_NE(drawnButton(kind, {}), drawnButton(kind, QStyle::State_Enabled)) << static_cast<int>(kind);
}

TEST(ALink, isUnderlinedUnderThePointer) {
    EXPECT_NE(drawnButton(ButtonKind::link, QStyle::State_Enabled | QStyle::State_MouseOver),
        drawnButton(ButtonKind::link, QStyle::State_Enabled));
}

TEST(AControl, is32High) {
    EXPECT_EQ(QPushButton("Stop").sizeHint().height(), 32);
    EXPECT_EQ(QLineEdit().sizeHint().height(), 32);
    EXPECT_EQ(QComboBox().sizeHint().height(), 32);
    SegmentWell well;
    well.addSegment("Sites");
    EXPECT_EQ(well.sizeHint().height(), 32);
    EXPECT_EQ(QCheckBox().sizeHint(), QSize(36, 20));
}

TEST(AButton, withASymbolAloneIsSquare) {
    QPushButton button;
    setButtonKind(&button, ButtonKind::flat);
    setButtonSymbol(&button, "gearshape");
    EXPECT_EQ(button.sizeHint(), QSize(32, 32));
}

TEST(Segments, keepTheirWidthWhenAnotherIsSelected) {
    SegmentWell well;
    QAbstractButton* sites = well.addSegment("Sites");
    QAbstractButton* services = well.addSegment("Services");
    EXPECT_TRUE(sites->isChecked());
    const QSize before = sites->sizeHint();
    services->setChecked(true);
    EXPECT_FALSE(sites->isChecked());
    EXPECT_EQ(sites->sizeHint(), before);
}

TEST_F(TwoButtons, showNoRingWithoutTheKeyboard) {
    click(first);
    EXPECT_TRUE(first->hasFocus());
    EXPECT_FALSE(isRinged(first));
}

TEST_F(TwoButtons, showTheRingAroundTheFocusAfterTab) {
    click(first);
    press(Qt::Key_Tab);
    EXPECT_TRUE(second->hasFocus());
    EXPECT_TRUE(isRinged(second));
    EXPECT_FALSE(isRinged(first));
    click(second);
    EXPECT_FALSE(isRinged(second));
}

TEST_F(TwoButtons, surviveThatTheRingedOneIsDeleted) {
    press(Qt::Key_Tab);
    delete second;
    second = nullptr;
    first->setFocus();
    QApplication::processEvents();
    EXPECT_TRUE(isRinged(first));
}

TEST(ASwitch, hasItsKnobWhereTheReadingEnds) {
    QCheckBox box;
    box.resize(box.sizeHint());
    box.setChecked(true);
    EXPECT_EQ(box.grab().toImage().pixelColor(26, 10), QColor(Qt::white));
    box.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(box.grab().toImage().pixelColor(10, 10), QColor(Qt::white));
}

TEST(AScrollArea, keepsItsWidthWhenTheBarAppears) {
    QScrollArea area;
    area.setWidgetResizable(true);
    auto* page = new QWidget;
    area.setWidget(page);
    area.resize(200, 100);
    area.show();
    QApplication::processEvents();
    const int width = page->width();
    page->setMinimumHeight(500);
    QApplication::processEvents();
    EXPECT_TRUE(area.verticalScrollBar()->isVisible());
    EXPECT_EQ(page->width(), width);
}

TEST(APickersList, isWideEnoughForItsEntries) {
    QComboBox picker;
    picker.addItems({"Short", "An entry that is a good deal longer"});
    picker.setFixedWidth(100);
    picker.show();
    QStyleOptionComboBox option;
    option.initFrom(&picker);
    const QRect list =
        picker.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxListBoxPopup, &picker);
    EXPECT_GT(list.width(), picker.fontMetrics().horizontalAdvance(picker.itemText(1)));
}

} // namespace kestrin
