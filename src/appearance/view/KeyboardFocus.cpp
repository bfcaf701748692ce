#include "appearance/view/KeyboardFocus.h"

#include <QApplication>
#include <QKeyEvent>

namespace kestrin {

namespace {

bool keyboardInUse = false;

bool isModifier(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta ||
           key == Qt::Key_AltGr || key == Qt::Key_Super_L || key == Qt::Key_Super_R;
}

} // namespace

KeyboardFocus::KeyboardFocus(QObject* parent) : QObject(parent) {
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

KeyboardFocus::~KeyboardFocus() {
    keyboardInUse = false;
    delete ring_;
}

bool KeyboardFocus::inUse() {
    return keyboardInUse;
}

bool KeyboardFocus::eventFilter(QObject*, QEvent* event) {
    // A shortcut overrides before its key is pressed, and Tab moves the focus without a press reaching any widget.
    if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
        if (!isModifier(static_cast<QKeyEvent*>(event)->key())) use(true);
    } else if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::TouchBegin) {
        use(false);
    }
    return false;
}

void KeyboardFocus::use(bool keyboard) {
    if (keyboard == keyboardInUse) return;
    keyboardInUse = keyboard;
    QWidget* focused = QApplication::focusWidget();
    follow(focused);
    if (focused) focused->update();
}

void KeyboardFocus::follow(QWidget* focused) {
    const bool shows = keyboardInUse && focused && FocusRing::suits(focused);
    if (!shows) {
        if (ring_) ring_->setWidget(nullptr);
        return;
    }
    // The frame lives in the window of its control and goes with it.
    if (!ring_) ring_ = new FocusRing;
    ring_->setWidget(focused);
}

} // namespace kestrin
