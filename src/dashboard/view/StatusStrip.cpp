#include "dashboard/view/StatusStrip.h"

#include <QPainter>

namespace kestrin {

namespace {

constexpr int slots = 24;
constexpr double blockHeight = 12;
constexpr double gap = 3;
constexpr double cornerRadius = 2;
constexpr double tickGap = 2;
constexpr double tickHeight = 2;
constexpr double blockOpacity = 0.82;
constexpr double emptyBlockHeight = 14;
constexpr double emptyBlockOpacity = 0.14;

} // namespace

StatusStrip::StatusStrip(QWidget* parent) : BarStrip(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    followTheme();
}

void StatusStrip::applyTheme(const Theme& /*theme*/) {
    updateGeometry();
}

void StatusStrip::show(const std::vector<StatusBlock>& blocks, const std::string& accessibleLabel) {
    const bool wasEmpty = blocks_.empty();
    blocks_ = blocks;
    // Without reports there is nothing to move through.
    setFocusPolicy(blocks_.empty() ? Qt::NoFocus : Qt::TabFocus);
    barsChanged(accessibleLabel);
    if (wasEmpty != blocks_.empty()) updateGeometry();
}

QSize StatusStrip::sizeHint() const {
    const Theme& theme = currentTheme();
    const int height = blocks_.empty()
                           ? theme.length(emptyBlockHeight)
                           : theme.length(blockHeight) + theme.length(tickGap) + theme.length(tickHeight);
    return {theme.length(200), height};
}

QRectF StatusStrip::slotOf(int bar) const {
    const double between = currentTheme().length(gap);
    const double width = (this->width() + between) / slots;
    return {(slots - barCount() + bar) * width, 0, width - between, static_cast<double>(height())};
}

const std::string& StatusStrip::detailsOf(int bar) const {
    return blocks_[static_cast<std::size_t>(bar)].details;
}

void StatusStrip::paintBars(QPainter& painter) const {
    const Theme& theme = currentTheme();
    const double radius = cornerRadius * theme.scale();
    painter.setPen(Qt::NoPen);
    if (blocks_.empty()) {
        painter.setBrush(theme.stateTint(StateColor::secondary, emptyBlockOpacity));
        painter.drawRoundedRect(rect(), radius, radius);
        return;
    }
    for (int index = 0; index < barCount(); ++index) {
        const StatusBlock& block = blocks_[static_cast<std::size_t>(index)];
        QRectF area = slotOf(index);
        area.setHeight(theme.length(blockHeight));
        painter.setBrush(theme.stateMark(block.color));
        painter.setOpacity(theme.isHighContrast() ? 1 : blockOpacity);
        painter.drawRoundedRect(area, radius, radius);
        painter.setOpacity(1);
        if (block.isOperational) continue;
        const double tick = theme.length(tickHeight);
        const QRectF below(area.left(), area.bottom() + theme.length(tickGap), area.width(), tick);
        painter.drawRoundedRect(below, tick / 2, tick / 2);
    }
}

} // namespace kestrin
