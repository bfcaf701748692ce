#include "dashboard/view/PanelView.h"

#include "appearance/view/ButtonKind.h"
#include "appearance/view/Spinner.h"
#include "appearance/view/SymbolLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/CommandButton.h"
#include "dashboard/view/DetailsTip.h"

#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace kestrin {

PanelView::PanelView(std::function<void()> openSettings, QWidget* parent)
    : ThemedWidget(parent), layout_(new QVBoxLayout(this)), spinner_(new Spinner(26, this)),
      symbol_(new SymbolLabel({}, 40, ColorRole::secondary, this)),
      title_(new WrappedLabel(TextStyle::panelTitle, ColorRole::text, this)),
      description_(new WrappedLabel(TextStyle::caption, ColorRole::secondary, this)),
      button_(new QPushButton(this)) {
    title_->setAlignment(Qt::AlignCenter);
    description_->setAlignment(Qt::AlignCenter);
    description_->setSelectable(true);
    connect(button_, &QPushButton::clicked, this, [run = std::move(openSettings)] {
        if (run) run();
    });
    layout_->addStretch();
    for (QWidget* widget : {static_cast<QWidget*>(spinner_), static_cast<QWidget*>(symbol_),
             static_cast<QWidget*>(title_), static_cast<QWidget*>(description_), static_cast<QWidget*>(button_)}) {
        const bool isText = widget == title_ || widget == description_;
        layout_->addWidget(widget, 0, isText ? Qt::Alignment() : Qt::AlignHCenter);
    }
    layout_->addStretch();
    followTheme();
}

void PanelView::applyTheme(const Theme& theme) {
    const int side = theme.length(24);
    layout_->setContentsMargins(side, theme.length(24), side, theme.length(24));
    layout_->setSpacing(theme.length(10));
}

void PanelView::show(const PanelContent& content, const Command& openSettings) {
    spinner_->hide();
    symbol_->show();
    symbol_->setSymbol(text(content.symbol));
    symbol_->setColor(content.color);
    title_->show();
    title_->setText(text(content.title));
    description_->setText(text(content.description));
    button_->setVisible(content.settingsButton.has_value());
    if (!content.settingsButton) return;
    showCommand(button_, openSettings, text(*content.settingsButton));
    setButtonKind(button_, openSettings.enabled ? ButtonKind::accent : ButtonKind::plain);
}

void PanelView::show(const LoadingContent& content) {
    symbol_->hide();
    title_->hide();
    button_->hide();
    spinner_->show();
    description_->setText(text(content.text));
}

} // namespace kestrin
