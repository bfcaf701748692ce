#include "dashboard/view/CheckRow.h"

#include "appearance/view/ElidedLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/AccessibleItem.h"
#include "dashboard/view/DetailsTip.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QPainter>

namespace kestrin {

CheckRow::CheckRow(QWidget* parent)
    : CardRow(parent), layout_(new QGridLayout(this)),
      result_(new WrappedLabel(TextStyle::captionMedium, ColorRole::text, this)),
      time_(new ElidedLabel(TextStyle::caption2, ColorRole::secondary, this)),
      duration_(new ElidedLabel(TextStyle::caption2, ColorRole::secondary, this)) {
    setFocusPolicy(Qt::TabFocus);
    makeAccessibleItem(this, QAccessible::ListItem);
    duration_->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    layout_->addWidget(result_, 0, 0, 1, 2);
    layout_->addWidget(time_, 1, 0);
    layout_->addWidget(duration_, 1, 1);
    layout_->setColumnStretch(0, 1);
    followTheme();
}

void CheckRow::applyTheme(const Theme& theme) {
    const int leading = theme.length(32);
    const int trailing = theme.length(14);
    const bool mirrored = isRightToLeft();
    layout_->setContentsMargins(
        mirrored ? trailing : leading, theme.length(5), mirrored ? leading : trailing, theme.length(5));
    layout_->setVerticalSpacing(0);
    layout_->setHorizontalSpacing(theme.length(8));
}

void CheckRow::show(const CheckRowContent& content) {
    content_ = content;
    result_->setText(text(content.result));
    time_->setFullText(text(content.time));
    duration_->setFullText(text(content.duration));
    setAccessibleName(text(content.accessibleName));
    setAccessibleDescription(text(content.details));
    setToolTip(plainToolTip(text(content.details)));
    update();
}

void CheckRow::paintEvent(QPaintEvent* event) {
    CardRow::paintEvent(event);
    const Theme& theme = currentTheme();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double size = theme.length(content_.up ? 8 : 10);
    const double axis = theme.length(18);
    const QPointF centre(isRightToLeft() ? width() - axis : axis,
        theme.length(5) + QFontMetricsF(theme.font(TextStyle::captionMedium)).height() / 2);
    painter.setBrush(theme.stateMark(content_.up ? StateColor::green : StateColor::red));
    painter.drawEllipse(centre, size / 2, size / 2);
    if (content_.up) return;
    painter.fillRect(QRectF(centre.x() - size * 0.3, centre.y() - size * 0.09, size * 0.6, size * 0.18),
        theme.color(ColorRole::surface));
}

void CheckRow::keyPressEvent(QKeyEvent* event) {
    copyOnRequest(event, text(content_.details));
}

} // namespace kestrin
