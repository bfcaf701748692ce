#include "dashboard/view/BannerButton.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/Symbols.h"
#include "appearance/view/Theme.h"
#include "dashboard/view/DetailsTip.h"
#include "dashboard/view/WindowCorners.h"

#include <QPainter>
#include <QStyle>

namespace kestrin {

namespace {

constexpr double padding = 8;
constexpr double side = 16;
constexpr double symbolSize = 20;
constexpr double chevronSize = 12;
constexpr double symbolToText = 10;
constexpr double tint = 0.10;
constexpr double tintUnderPointer = 0.16;

} // namespace

BannerButton::BannerButton(QWidget* parent) : QAbstractButton(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void BannerButton::show(const UpdateBannerContent& content) {
    content_ = content;
    setAccessibleName(kestrin::text(content.accessibleLabel));
    setAccessibleDescription(kestrin::text(content.accessibleHint));
    setToolTip(plainToolTip(kestrin::text(content.accessibleHint)));
    update();
}

QSize BannerButton::sizeHint() const {
    const Theme& theme = currentTheme();
    const double lines = QFontMetricsF(theme.font(TextStyle::captionDemiBold)).height() +
                         QFontMetricsF(theme.font(TextStyle::caption2)).height();
    return {theme.length(200), qRound(lines) + 2 * theme.length(padding)};
}

void BannerButton::paintEvent(QPaintEvent* /*event*/) {
    const Theme& theme = currentTheme();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double corners = windowCornerRadius(this);
    fillRounded(painter, QRectF(rect()).adjusted(0, 0, 0, corners), corners,
        theme.accentTint(underMouse() ? tintUnderPointer : tint, ColorRole::window));
    const QColor accent = theme.color(ColorRole::accent);

    const auto placed = [this](double x, double y, double width, double height) {
        return QRectF(isRightToLeft() ? this->width() - x - width : x, y, width, height);
    };
    const double symbol = theme.length(symbolSize);
    const double chevron = theme.length(chevronSize);
    const double edge = theme.length(side);
    painter.setLayoutDirection(layoutDirection());
    paintSymbol(
        painter, placed(edge, (height() - symbol) / 2, symbol, symbol), kestrin::text(content_.symbol), accent);
    paintSymbol(painter, placed(width() - edge - chevron, (height() - chevron) / 2, chevron, chevron),
        kestrin::text(content_.trailingSymbol), theme.color(ColorRole::secondary));

    const double left = edge + symbol + theme.length(symbolToText);
    const double room = width() - left - edge - chevron - theme.length(symbolToText);
    double top = theme.length(padding);
    const auto line = [&](const std::string& what, TextStyle style, ColorRole role) {
        const QFontMetricsF metrics(theme.font(style));
        painter.setFont(theme.font(style));
        painter.setPen(theme.color(role));
        painter.drawText(placed(left, top, room, metrics.height()),
            static_cast<int>(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeading) | Qt::AlignVCenter) |
                Qt::TextSingleLine,
            metrics.elidedText(kestrin::text(what), Qt::ElideRight, room));
        top += metrics.height();
    };
    line(content_.title, TextStyle::captionDemiBold, ColorRole::text);
    line(content_.subtitle, TextStyle::caption2, ColorRole::secondary);
    if (!hasFocus()) return;
    const double ring = theme.ringWidth();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(accent, ring));
    painter.drawRoundedRect(QRectF(rect()).adjusted(ring, ring, -ring, -ring), theme.length(7), theme.length(7));
}

} // namespace kestrin
