#include "dashboard/view/BottomBars.h"

#include "appearance/view/ButtonKind.h"
#include "appearance/view/Shapes.h"
#include "appearance/view/Spinner.h"
#include "appearance/view/SymbolLabel.h"
#include "appearance/view/ThemedLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/CommandButton.h"
#include "dashboard/view/Commands.h"
#include "dashboard/view/DetailsTip.h"
#include "dashboard/view/WindowCorners.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace kestrin {

BottomBars::BottomBars(Actions actions, QWidget* refuge, QWidget* parent)
    : ThemedWidget(parent), statusBar_(new QWidget(this)), status_(new QHBoxLayout(statusBar_)),
      spinner_(new Spinner(20, statusBar_)), symbol_(new SymbolLabel({}, 20, ColorRole::secondary, statusBar_)),
      text_(new WrappedLabel(TextStyle::captionMedium, ColorRole::text, statusBar_)),
      secondLine_(new WrappedLabel(TextStyle::caption2, ColorRole::secondary, statusBar_)),
      startStop_(new QPushButton(statusBar_)), bottomBar_(new QWidget(this)), bottom_(new QHBoxLayout(bottomBar_)),
      checkNow_(new QPushButton(bottomBar_)),
      interval_(new ThemedLabel(TextStyle::caption2, ColorRole::secondary, bottomBar_)),
      settings_(new QPushButton(bottomBar_)), quit_(new QPushButton(bottomBar_)), refuge_(refuge) {
    buildLayouts();
    for (auto [button, action] :
        {std::pair(startStop_, std::move(actions.startOrStop)), std::pair(checkNow_, std::move(actions.checkNow)),
            std::pair(settings_, std::move(actions.openSettings)), std::pair(quit_, std::move(actions.quit))})
        connect(button, &QPushButton::clicked, this, [run = action] {
            if (run) run();
        });
    for (QPushButton* button : {checkNow_, settings_, quit_})
        setButtonKind(button, ButtonKind::flat);
    followTheme();
}

void BottomBars::buildLayouts() {
    auto* lines = new QVBoxLayout;
    lines->setSpacing(0);
    lines->addWidget(text_);
    lines->addWidget(secondLine_);
    status_->addWidget(spinner_);
    status_->addWidget(symbol_);
    status_->addLayout(lines, 1);
    status_->addWidget(startStop_);

    interval_->setAlignment(Qt::AlignCenter);
    bottom_->addWidget(checkNow_);
    bottom_->addStretch(1);
    bottom_->addWidget(interval_);
    bottom_->addStretch(1);
    bottom_->addWidget(settings_);
    bottom_->addWidget(quit_);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(statusBar_);
    column->addWidget(bottomBar_);
}

void BottomBars::applyTheme(const Theme& theme) {
    status_->setContentsMargins(theme.length(16), theme.length(9), theme.length(16), theme.length(9));
    status_->setSpacing(theme.length(10));
    // Flat buttons have a padding of their own, so that their symbols and words stand on the margin.
    bottom_->setContentsMargins(theme.length(8), theme.length(5), theme.length(8), theme.length(5));
    bottom_->setSpacing(theme.length(2));
}

void BottomBars::show(const DashboardContent& content, bool mayAccent) {
    const StatusBarContent& status = content.statusBar;
    spinner_->setVisible(status.isBusy);
    symbol_->setVisible(!status.isBusy);
    symbol_->setSymbol(text(status.symbol));
    symbol_->setColor(status.color);
    text_->setText(text(status.text));
    secondLine_->setText(text(status.secondLine));
    interval_->setText(text(content.intervalText));

    const Command& startStop = command(content, CommandID::startOrStop);
    showCommand(startStop_, startStop);
    const bool starts = !content.isMonitoring;
    setButtonKind(startStop_, mayAccent && starts && startStop.enabled ? ButtonKind::accent : ButtonKind::plain);
    setButtonSymbol(checkNow_, text(content.checkNowSymbol));
    showCheckNow(command(content, CommandID::checkNow));
    const Command& settings = command(content, CommandID::openSettings);
    showCommand(settings_, settings, QString());
    settings_->setAccessibleName(text(settings.label));
    if (settings.enabled) settings_->setToolTip(plainToolTip(text(settings.label)));
    setButtonSymbol(settings_, text(content.settingsSymbol));
    showCommand(quit_, command(content, CommandID::quit));
}

// A button that is disabled loses the focus to the next one, Settings or Quit, and the next press of Space would
// run that.
void BottomBars::showCheckNow(const Command& command) {
    if (!command.enabled && window()->focusWidget() == checkNow_) {
        refuge_->setFocus();
        checkNowAwaitsFocus_ = true;
    }
    showCommand(checkNow_, command);
    if (!command.enabled || !std::exchange(checkNowAwaitsFocus_, false)) return;
    if (window()->focusWidget() == refuge_) checkNow_->setFocus();
}

void BottomBars::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Theme& theme = currentTheme();
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = windowCornerRadius(this);
    fillRounded(painter, QRectF(rect()).adjusted(0, -radius, 0, 0), radius, theme.color(ColorRole::surface));
    painter.setRenderHint(QPainter::Antialiasing, false);
    const double hairline = hairlineWidth(devicePixelRatioF());
    for (const QWidget* bar : {statusBar_, bottomBar_})
        painter.fillRect(QRectF(0, bar->y(), width(), hairline), theme.color(ColorRole::border));
}

} // namespace kestrin
