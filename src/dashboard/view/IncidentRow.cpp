#include "dashboard/view/IncidentRow.h"

#include "appearance/view/SymbolLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/AccessibleItem.h"
#include "dashboard/view/DetailsTip.h"

#include <QGridLayout>

namespace kestrin {

IncidentRow::IncidentRow(QWidget* parent)
    : CardRow(parent), layout_(new QGridLayout(this)), symbol_(new SymbolLabel({}, 16, ColorRole::secondary, this)),
      word_(new WrappedLabel(TextStyle::captionDemiBold, ColorRole::text, this)),
      period_(new WrappedLabel(TextStyle::caption2, ColorRole::secondary, this)) {
    makeAccessibleItem(this, QAccessible::ListItem);
    layout_->addWidget(symbol_, 0, 0, Qt::AlignTop);
    layout_->addWidget(word_, 0, 1);
    layout_->addWidget(period_, 1, 1);
    layout_->setColumnStretch(1, 1);
    followTheme();
}

void IncidentRow::applyTheme(const Theme& theme) {
    const int edge = theme.length(14);
    const int symbol = theme.length(10);
    const bool mirrored = isRightToLeft();
    layout_->setContentsMargins(
        mirrored ? edge : symbol, theme.length(5), mirrored ? symbol : edge, theme.length(5));
    layout_->setVerticalSpacing(0);
    layout_->setHorizontalSpacing(theme.length(6));
}

void IncidentRow::show(const IncidentRowContent& content) {
    symbol_->setSymbol(text(content.symbol));
    symbol_->setColor(content.color);
    word_->setText(text(content.word));
    period_->setText(text(content.period));
    setAccessibleName(text(content.word) + ", " + text(content.period));
}

} // namespace kestrin
