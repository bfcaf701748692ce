#include "dashboard/view/ServicesSummary.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/SymbolLabel.h"
#include "appearance/view/ThemedLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/DetailsTip.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace kestrin {

namespace {

constexpr double discSize = 38;
constexpr double discTint = 0.14;

} // namespace

ServicesSummary::ServicesSummary(QWidget* parent)
    : ThemedWidget(parent), layout_(new QHBoxLayout(this)),
      symbol_(new SymbolLabel({}, 20, ColorRole::secondary, this)),
      title_(new WrappedLabel(TextStyle::title3, ColorRole::text, this)),
      subtitle_(new WrappedLabel(TextStyle::caption, ColorRole::secondary, this)),
      state_(new ThemedLabel(TextStyle::captionBold, ColorRole::text, this)) {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title_);
    texts->addWidget(subtitle_);
    layout_->addWidget(symbol_, 0, Qt::AlignCenter);
    layout_->addLayout(texts, 1);
    layout_->addWidget(state_);
    followTheme();
}

void ServicesSummary::applyTheme(const Theme& theme) {
    layout_->setContentsMargins(theme.length(14), theme.length(10), theme.length(14), theme.length(10));
    layout_->setSpacing(theme.length(12));
    symbol_->setFixedSize(theme.length(discSize), theme.length(discSize));
}

void ServicesSummary::show(const ServicesSummaryContent& content) {
    color_ = content.color;
    symbol_->setSymbol(text(content.symbol));
    symbol_->setColor(content.color);
    title_->setText(text(content.title));
    subtitle_->setText(text(content.subtitle));
    state_->setText(text(content.state));
    state_->setColor(content.color);
    update();
}

void ServicesSummary::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = currentTheme();
    const QRectF disc(symbol_->geometry());
    paintTint(painter, disc, disc.height() / 2, theme.stateTint(color_, discTint), theme.stateText(color_));
}

} // namespace kestrin
