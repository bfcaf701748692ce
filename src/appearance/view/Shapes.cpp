#include "appearance/view/Shapes.h"

#include "appearance/view/Theme.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace kestrin {

double hairlineWidth(double devicePixelRatio) {
    return std::max(1.0, std::floor(devicePixelRatio)) / devicePixelRatio;
}

QRectF snapped(const QRectF& rect, double devicePixelRatio) {
    const auto snap = [&](double value) { return std::round(value * devicePixelRatio) / devicePixelRatio; };
    return QRectF(QPointF(snap(rect.left()), snap(rect.top())), QPointF(snap(rect.right()), snap(rect.bottom())));
}

void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color) {
    const double fitting = std::min({radius, rect.width() / 2, rect.height() / 2});
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(rect, fitting, fitting);
    painter.restore();
}

void outlineRounded(QPainter& painter, const QRectF& rect, double radius, double width, const QColor& color) {
    const double half = width / 2;
    const QRectF line = rect.adjusted(half, half, -half, -half);
    const double fitting = std::clamp(radius - half, 0.0, std::max(0.0, std::min(line.width(), line.height()) / 2));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(line, fitting, fitting);
    painter.restore();
}

void paintTint(QPainter& painter, const QRectF& rect, double radius, const QColor& tint, const QColor& text) {
    fillRounded(painter, rect, radius, tint);
    const Theme& theme = currentTheme();
    if (theme.isHighContrast()) outlineRounded(painter, rect, radius, theme.length(2), text);
}

} // namespace kestrin
