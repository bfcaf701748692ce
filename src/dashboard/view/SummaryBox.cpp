#include "dashboard/view/SummaryBox.h"

#include "appearance/view/Shapes.h"

#include "appearance/view/Capsule.h"
#include "appearance/view/Divider.h"
#include "appearance/view/ElidedLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/AccessibleItem.h"
#include "dashboard/view/DetailsTip.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace kestrin {

SummaryBox::SummaryBox(QWidget* parent)
    : ThemedWidget(parent), layout_(new QVBoxLayout(this)), top_(new QHBoxLayout), names_(new QVBoxLayout),
      state_(new QVBoxLayout), name_(new ElidedLabel(TextStyle::title3, ColorRole::text, this)),
      url_(new ElidedLabel(TextStyle::caption, ColorRole::secondary, this)),
      badge_(new Capsule(TextStyle::headline, this)),
      lastChecked_(new ElidedLabel(TextStyle::caption2, ColorRole::secondary, this)),
      divider_(new Divider(Qt::Horizontal, 0, this)), figures_(new QHBoxLayout) {
    url_->setSelectable(true);
    // An address reads from left to right in every language.
    url_->setLayoutDirection(Qt::LeftToRight);
    names_->addWidget(name_);
    names_->addWidget(url_);
    state_->addWidget(badge_, 0, Qt::AlignRight);
    state_->addWidget(lastChecked_, 0, Qt::AlignRight);
    top_->addLayout(names_, 1);
    top_->addLayout(state_);
    layout_->addLayout(top_);
    layout_->addWidget(divider_);
    layout_->addLayout(figures_);
    for (Metric& metric : metrics_)
        metric = addedMetric(figures_);
    followTheme();
}

SummaryBox::Metric SummaryBox::addedMetric(QHBoxLayout* row) {
    auto* column = new QWidget(this);
    makeAccessibleItem(column, QAccessible::StaticText);
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    Metric metric{column, new ElidedLabel(TextStyle::caption2, ColorRole::secondary, column),
        new WrappedLabel(TextStyle::figure, ColorRole::text, column)};
    layout->addWidget(metric.title);
    layout->addWidget(metric.value);
    layout->addStretch();
    row->addWidget(column, 1);
    return metric;
}

void SummaryBox::applyTheme(const Theme& theme) {
    layout_->setContentsMargins(theme.length(14), theme.length(10), theme.length(14), theme.length(10));
    layout_->setSpacing(theme.length(10));
    top_->setSpacing(theme.length(10));
    names_->setSpacing(0);
    state_->setSpacing(theme.length(2));
    figures_->setSpacing(theme.length(28));
    url_->setAlignment((isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter | Qt::AlignAbsolute);
}

void SummaryBox::show(const SiteSummaryContent& content) {
    name_->setFullText(text(content.name));
    url_->setFullText(text(content.url));
    badge_->setText(text(content.badge));
    badge_->setState(content.badgeColor);
    lastChecked_->setFullText(text(content.lastChecked));
    for (std::size_t index = 0; index < metrics_.size(); ++index) {
        const MetricValue& value = content.metrics.at(index);
        metrics_[index].title->setFullText(text(value.title));
        metrics_[index].value->setText(text(value.value));
        metrics_[index].column->setAccessibleName(text(value.title) + ": " + text(value.value));
    }
}

// Hairlines between the figures.
void SummaryBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const double hairline = hairlineWidth(devicePixelRatioF());
    for (std::size_t index = 1; index < metrics_.size(); ++index) {
        const QRect before = metrics_[index - 1].column->geometry();
        const QRect after = metrics_[index].column->geometry();
        const int middle =
            isRightToLeft() ? (after.right() + before.left()) / 2 : (before.right() + after.left()) / 2;
        painter.fillRect(
            QRectF(middle, after.top(), hairline, after.height()), currentTheme().color(ColorRole::border));
    }
}

} // namespace kestrin
