#include "dashboard/view/HeaderView.h"

#include "appearance/view/SegmentWell.h"
#include "appearance/view/Shapes.h"
#include "appearance/view/SymbolLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/DetailsTip.h"
#include "dashboard/view/SitePicker.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>
#include <utility>

namespace kestrin {

HeaderView::HeaderView(Actions actions, QWidget* parent)
    : ThemedWidget(parent), layout_(new QVBoxLayout(this)), top_(new QHBoxLayout),
      symbol_(new SymbolLabel("kestrin.menu.symbol", 24, ColorRole::text, this)),
      title_(new WrappedLabel(TextStyle::headline, ColorRole::text, this)),
      subtitle_(new WrappedLabel(TextStyle::caption, ColorRole::secondary, this)),
      picker_(new SitePicker(std::move(actions.selectSite), this)), pageSwitch_(new SegmentWell(this)),
      sites_(pageSwitch_->addSegment({})), services_(pageSwitch_->addSegment({})) {
    auto* titles = new QVBoxLayout;
    titles->setSpacing(0);
    titles->addWidget(title_);
    titles->addWidget(subtitle_);
    top_->addWidget(symbol_);
    top_->addLayout(titles, 1);
    top_->addWidget(picker_);
    layout_->addLayout(top_);
    layout_->addWidget(pageSwitch_);
    connect(services_, &QAbstractButton::toggled, this, [showPage = std::move(actions.showPage)](bool services) {
        if (showPage) showPage(services);
    });
    followTheme();
}

void HeaderView::applyTheme(const Theme& theme) {
    layout_->setContentsMargins(theme.length(16), theme.length(12), theme.length(16), theme.length(10));
    layout_->setSpacing(theme.length(10));
    top_->setSpacing(theme.length(10));
}

void HeaderView::show(const HeaderContent& header, const std::optional<PageSwitchContent>& pageSwitch) {
    title_->setText(text(header.title));
    subtitle_->setText(text(header.subtitle));
    picker_->setVisible(header.picker.has_value());
    if (header.picker) picker_->show(*header.picker);
    pageSwitch_->setVisible(pageSwitch.has_value());
    if (!pageSwitch) return;
    pageSwitch_->setAccessibleName(text(pageSwitch->accessibleLabel));
    sites_->setText(text(pageSwitch->sitesLabel));
    services_->setText(text(pageSwitch->servicesLabel));
    // A change made by the model must not be reported as a choice of the user.
    const QSignalBlocker blocker(services_);
    (pageSwitch->showsServices ? services_ : sites_)->setChecked(true);
}

void HeaderView::setSeparated(bool separated) {
    if (separated_ == separated) return;
    separated_ = separated;
    update();
}

QWidget* HeaderView::firstControl() const {
    if (picker_->isVisibleTo(this)) return picker_;
    if (!pageSwitch_->isVisibleTo(this)) return nullptr;
    return services_->isChecked() ? services_ : sites_;
}

void HeaderView::paintEvent(QPaintEvent* /*event*/) {
    if (!separated_) return;
    QPainter painter(this);
    const double hairline = hairlineWidth(devicePixelRatioF());
    painter.fillRect(QRectF(0, height() - hairline, width(), hairline), currentTheme().color(ColorRole::border));
}

} // namespace kestrin
