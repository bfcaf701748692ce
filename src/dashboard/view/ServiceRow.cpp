#include "dashboard/view/ServiceRow.h"

#include "appearance/view/ButtonKind.h"
#include "appearance/view/Capsule.h"
#include "appearance/view/ElidedLabel.h"
#include "appearance/view/SymbolLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/DetailsTip.h"
#include "dashboard/view/StatusStrip.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace kestrin {

ServiceRow::ServiceRow(QWidget* parent)
    : CardRow(parent), layout_(new QVBoxLayout(this)), top_(new QHBoxLayout), bottom_(new QHBoxLayout),
      symbol_(new SymbolLabel({}, 18, ColorRole::secondary, this)),
      name_(new ElidedLabel(TextStyle::headline, ColorRole::text, this)),
      state_(new Capsule(TextStyle::caption2Bold, this)),
      summary_(new WrappedLabel(TextStyle::caption, ColorRole::text, this)),
      historyTitle_(new WrappedLabel(TextStyle::caption2, ColorRole::secondary, this)),
      strip_(new StatusStrip(this)), noHistory_(new WrappedLabel(TextStyle::caption2, ColorRole::secondary, this)),
      failure_(new WrappedLabel(TextStyle::caption2, ColorRole::secondary, this)),
      lastChecked_(new WrappedLabel(TextStyle::caption2, ColorRole::secondary, this)),
      link_(new QPushButton(this)) {
    leadingInset = trailingInset = 14;
    summary_->setSelectable(true);
    failure_->setSelectable(true);
    setButtonKind(link_, ButtonKind::link);
    connect(link_, &QPushButton::clicked, this, [this] { QDesktopServices::openUrl(QUrl(linkURL_)); });

    top_->addWidget(symbol_);
    top_->addWidget(name_, 1);
    top_->addWidget(state_);
    bottom_->addWidget(lastChecked_, 1);
    bottom_->addWidget(link_);
    layout_->addLayout(top_);
    layout_->addWidget(summary_);
    layout_->addWidget(historyTitle_);
    layout_->addWidget(strip_);
    layout_->addWidget(noHistory_);
    layout_->addWidget(failure_);
    layout_->addLayout(bottom_);
    followTheme();
}

void ServiceRow::applyTheme(const Theme& theme) {
    layout_->setContentsMargins(theme.length(14), theme.length(10), theme.length(14), theme.length(10));
    layout_->setSpacing(theme.length(4));
    top_->setSpacing(theme.length(10));
    bottom_->setSpacing(theme.length(8));
    link_->setFont(theme.font(TextStyle::caption2));
}

void ServiceRow::show(const ServiceRowContent& content) {
    symbol_->setSymbol(text(content.symbol));
    symbol_->setColor(content.color);
    name_->setFullText(text(content.name));
    state_->setText(text(content.state));
    state_->setState(content.color);
    summary_->setText(text(content.summary));
    historyTitle_->setVisible(!content.history.empty());
    historyTitle_->setText(text(content.historyTitle));
    strip_->show(content.history, content.history.empty() ? content.noHistory : content.historyAccessibleLabel);
    noHistory_->setVisible(content.history.empty());
    noHistory_->setText(text(content.noHistory));
    failure_->setVisible(content.failure.has_value());
    failure_->setText(text(content.failure.value_or("")));
    lastChecked_->setText(text(content.lastChecked));
    link_->setText(text(content.linkText));
    // Every row has the same link text. The name tells screen reader users which service it belongs to.
    link_->setAccessibleName(text(content.linkText) + ", " + text(content.name));
    link_->setToolTip(plainToolTip(text(content.linkURL)));
    setButtonSymbol(link_, text(content.linkSymbol));
    linkURL_ = text(content.linkURL);
}

} // namespace kestrin
