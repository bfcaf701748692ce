#include "dashboard/view/NoteLine.h"

#include "appearance/view/SymbolLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/DetailsTip.h"

#include <QHBoxLayout>

namespace kestrin {

NoteLine::NoteLine(TextStyle style, QWidget* parent)
    : ThemedWidget(parent), layout_(new QHBoxLayout(this)),
      symbol_(new SymbolLabel({}, 16, ColorRole::secondary, this)),
      text_(new WrappedLabel(style, ColorRole::secondary, this)) {
    text_->setSelectable(true);
    layout_->addWidget(symbol_, 0, Qt::AlignTop);
    layout_->addWidget(text_, 1);
    followTheme();
}

void NoteLine::applyTheme(const Theme& theme) {
    layout_->setContentsMargins(theme.length(2), 0, 0, 0);
    layout_->setSpacing(theme.length(8));
}

void NoteLine::show(const NoteContent& content) {
    symbol_->setSymbol(text(content.symbol));
    symbol_->setColor(content.color);
    text_->setColor(content.color);
    text_->setText(text(content.text));
}

} // namespace kestrin
