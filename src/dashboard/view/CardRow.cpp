#include "dashboard/view/CardRow.h"

#include "appearance/view/Shapes.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>

namespace kestrin {

void CardRow::setDivided(bool divided) {
    if (divided_ == divided) return;
    divided_ = divided;
    update();
}

void CardRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Theme& theme = currentTheme();
    if (divided_) {
        const int leading = theme.length(leadingInset);
        const int trailing = trailingInset > 0 ? theme.length(trailingInset) : 0;
        const double hairline = hairlineWidth(devicePixelRatioF());
        const double left = isRightToLeft() ? trailing : leading;
        painter.fillRect(QRectF(left, 0, width() - leading - trailing, hairline), theme.color(ColorRole::border));
    }
    if (!hasFocus()) return;
    painter.setRenderHint(QPainter::Antialiasing);
    const int ring = theme.length(theme.isHighContrast() ? 3 : 2);
    painter.setPen(QPen(theme.color(ColorRole::accent), ring));
    const double inset = ring / 2.0 + theme.length(2);
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(inset, inset, -inset, -inset), theme.length(6), theme.length(6));
}

void CardRow::copyOnRequest(QKeyEvent* event, const QString& details) {
    if (event->matches(QKeySequence::Copy))
        QGuiApplication::clipboard()->setText(details);
    else
        ThemedWidget::keyPressEvent(event);
}

} // namespace kestrin
