#include "dashboard/view/ResponseChart.h"

#include <QPainter>
#include <algorithm>

namespace kestrin {

namespace {

constexpr double barAreaHeight = 62;
constexpr double tickGap = 2;
constexpr double tickHeight = 2;
constexpr double barShareOfSlot = 0.64;
constexpr double widestBar = 14;
constexpr double cornerRadius = 1.5;
constexpr double successOpacity = 0.75;
constexpr double failureOpacity = 0.8;

} // namespace

ResponseChart::ResponseChart(QWidget* parent) : BarStrip(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    followTheme();
}

void ResponseChart::applyTheme(const Theme& /*theme*/) {
    updateGeometry();
}

void ResponseChart::show(const ResponseChartContent& content) {
    content_ = content;
    barsChanged(content_.accessibleLabel);
}

QSize ResponseChart::sizeHint() const {
    const Theme& theme = currentTheme();
    return {theme.length(200), theme.length(barAreaHeight) + theme.length(tickGap) + theme.length(tickHeight)};
}

QRectF ResponseChart::slotOf(int bar) const {
    const double perUnit = width() / (content_.domainEnd - content_.domainStart);
    const double centre = content_.bars[static_cast<std::size_t>(bar)].position - content_.domainStart;
    return {(centre - 0.5) * perUnit, 0, perUnit, static_cast<double>(height())};
}

const std::string& ResponseChart::detailsOf(int bar) const {
    return content_.bars[static_cast<std::size_t>(bar)].details;
}

void ResponseChart::paintBars(QPainter& painter) const {
    const Theme& theme = currentTheme();
    const double area = theme.length(barAreaHeight);
    std::int64_t highest = 1;
    for (const ChartBar& bar : content_.bars)
        highest = std::max(highest, bar.plottedValue);
    painter.setPen(Qt::NoPen);
    for (int index = 0; index < barCount(); ++index) {
        const ChartBar& bar = content_.bars[static_cast<std::size_t>(index)];
        const QRectF slot = slotOf(index);
        const double width = std::min(slot.width() * barShareOfSlot, static_cast<double>(theme.length(widestBar)));
        const double height = area * static_cast<double>(bar.plottedValue) / static_cast<double>(highest);
        const double left = slot.center().x() - width / 2;
        const QColor mark = theme.stateMark(bar.up ? StateColor::green : StateColor::red);
        const double radius = cornerRadius * theme.scale();
        painter.setBrush(mark);
        painter.setOpacity(theme.isHighContrast() ? 1 : bar.up ? successOpacity : failureOpacity);
        painter.drawRoundedRect(QRectF(left, area - height, width, height), radius, radius);
        if (bar.up) continue;
        painter.setOpacity(1);
        const double tick = theme.length(tickHeight);
        painter.drawRoundedRect(QRectF(left, area + theme.length(tickGap), width, tick), tick / 2, tick / 2);
    }
    painter.setOpacity(1);
}

} // namespace kestrin
