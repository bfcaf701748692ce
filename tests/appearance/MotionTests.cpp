#include "appearance/view/Spinner.h"
#include "appearance/view/Theme.h"

#include <QApplication>
#include <QCheckBox>
#include <QDeadlineTimer>
#include <QThread>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

void setReducedMotion(bool reduced) {
    setCurrentTheme(Theme::make({.reducedMotion = reduced, .applicationFont = QApplication::font()}));
}

/// Lets events run until the widget looks different; false if it never does.
bool changes(QWidget& widget, int patienceMS) {
    const QImage before = widget.grab().toImage();
    QDeadlineTimer deadline(patienceMS);
    while (!deadline.hasExpired()) {
        QApplication::processEvents();
        if (widget.grab().toImage() != before) return true;
        QThread::msleep(5);
    }
    return false;
}

} // namespace

TEST(ASpinner, turnsOnlyWhileItIsVisible) {
    Spinner spinner;
    EXPECT_FALSE(spinner.isTurning());
    spinner.show();
    EXPECT_TRUE(spinner.isTurning());
    EXPECT_TRUE(changes(spinner, 5000));
    spinner.hide();
    EXPECT_FALSE(spinner.isTurning());
}

TEST(ASpinner, standsStillWithReducedMotion) {
    Spinner spinner;
    spinner.show();
    setReducedMotion(true);
    EXPECT_FALSE(spinner.isTurning());
    EXPECT_FALSE(changes(spinner, 200));
    setReducedMotion(false);
    EXPECT_TRUE(spinner.isTurning());
}

TEST(ASwitch, movesItsKnobToTheOtherEnd) {
    QCheckBox box;
    box.resize(box.sizeHint());
    box.show();
    QApplication::processEvents();
    box.setChecked(true);
    // It starts where it was.
    EXPECT_TRUE(changes(box, 5000));
}

TEST(ASwitch, isAtTheOtherEndAtOnceWithReducedMotion) {
    setReducedMotion(true);
    QCheckBox box;
    box.resize(box.sizeHint());
    box.show();
    QApplication::processEvents();
    box.setChecked(true);
    EXPECT_FALSE(changes(box, 300));
}

} // namespace kestrin
