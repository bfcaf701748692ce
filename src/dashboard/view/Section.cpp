#include "dashboard/view/Section.h"

#include "appearance/view/Card.h"
#include "appearance/view/WrappedLabel.h"

#include <QVBoxLayout>

namespace kestrin {

Section::Section(QWidget* parent)
    : ThemedWidget(parent), layout_(new QVBoxLayout(this)),
      title_(new WrappedLabel(TextStyle::captionDemiBold, ColorRole::secondary, this)), card_(new Card(this)),
      column_(new QVBoxLayout(card_)) {
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    layout_->addWidget(title_);
    layout_->addWidget(card_);
    followTheme();
}

void Section::applyTheme(const Theme& theme) {
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(theme.length(5));
    title_->setContentsMargins(theme.length(2), 0, theme.length(2), 0);
}

void Section::setTitle(const QString& title) {
    title_->setText(title);
}

} // namespace kestrin
