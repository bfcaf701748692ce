#include "dashboard/view/BarStrip.h"

#include "dashboard/view/AccessibleItem.h"
#include "dashboard/view/DetailsTip.h"

#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

namespace kestrin {

BarStrip::BarStrip(QWidget* parent) : ThemedWidget(parent) {
    setFocusPolicy(Qt::TabFocus);
    makeAccessibleItem(this, QAccessible::Chart);
}

void BarStrip::barsChanged(const std::string& accessibleLabel) {
    setAccessibleName(text(accessibleLabel));
    current_ = std::min(current_, barCount() - 1);
    describeCurrent();
    update();
}

void BarStrip::describeCurrent() {
    setAccessibleDescription(hasFocus() && current_ >= 0 ? text(detailsOf(current_)) : QString());
}

void BarStrip::moveTo(int bar) {
    if (barCount() == 0) return;
    current_ = std::clamp(bar, 0, barCount() - 1);
    describeCurrent();
    update();
    const QRectF slot = slotOf(current_);
    const double x = isRightToLeft() ? width() - slot.center().x() : slot.center().x();
    showDetails(this, mapToGlobal(QPoint(qRound(x), height())), rect(), detailsOf(current_));
}

int BarStrip::barAt(double x) const {
    const double position = isRightToLeft() ? width() - x : x;
    for (int bar = 0; bar < barCount(); ++bar) {
        const QRectF slot = slotOf(bar);
        if (position >= slot.left() && position < slot.right()) return bar;
    }
    return -1;
}

bool BarStrip::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return ThemedWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const int bar = barAt(help->pos().x());
    if (bar < 0) {
        showDetails(this, help->globalPos(), {}, {});
        return true;
    }
    QRectF part = slotOf(bar);
    if (isRightToLeft()) part.moveRight(width() - part.left());
    showDetails(this, help->globalPos(), part.toAlignedRect(), detailsOf(bar));
    return true;
}

void BarStrip::keyPressEvent(QKeyEvent* event) {
    const int onwards = isRightToLeft() ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Right:
        return moveTo(current_ + onwards);
    case Qt::Key_Left:
        return moveTo(current_ - onwards);
    case Qt::Key_Home:
        return moveTo(0);
    case Qt::Key_End:
        return moveTo(barCount() - 1);
    default:
        ThemedWidget::keyPressEvent(event);
    }
}

void BarStrip::focusInEvent(QFocusEvent* event) {
    if (current_ < 0) current_ = barCount() - 1;
    describeCurrent();
    ThemedWidget::focusInEvent(event);
}

void BarStrip::focusOutEvent(QFocusEvent* event) {
    ThemedWidget::focusOutEvent(event);
    describeCurrent();
}

void BarStrip::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isRightToLeft()) {
        painter.translate(width(), 0);
        painter.scale(-1, 1);
    }
    paintBars(painter);
    if (!hasFocus() || current_ < 0 || current_ >= barCount()) return;
    const Theme& theme = currentTheme();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme.color(ColorRole::accent), theme.length(2)));
    const double inset = theme.length(2) / 2.0;
    painter.drawRoundedRect(slotOf(current_).adjusted(-inset, inset, inset, -inset), inset, inset);
}

} // namespace kestrin
