#include "appearance/view/ScrollBarDrawing.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"

#include <QPainter>
#include <algorithm>

namespace kestrin {

namespace {

constexpr double thumb = 4;
constexpr double hoveredThumb = 8;
constexpr double edgeMargin = 2;

/// Start and length of the thumb along the bar.
std::pair<int, int> thumbSpan(const QStyleOptionSlider& option) {
    const bool horizontal = option.orientation == Qt::Horizontal;
    const int groove = horizontal ? option.rect.width() : option.rect.height();
    const qint64 range = static_cast<qint64>(option.maximum) - option.minimum;
    if (range <= 0) return {0, groove};
    const qint64 share = groove * static_cast<qint64>(option.pageStep) / (range + option.pageStep);
    const int length = std::clamp(static_cast<int>(share), std::min(shortestThumb(), groove), groove);
    const int start = QStyle::sliderPositionFromValue(
        option.minimum, option.maximum, option.sliderPosition, groove - length, option.upsideDown);
    return {start, length};
}

} // namespace

QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part) {
    const bool horizontal = option.orientation == Qt::Horizontal;
    const auto [start, length] = thumbSpan(option);
    const int groove = horizontal ? option.rect.width() : option.rect.height();
    const auto span = [&](int from, int to) {
        QRect place = option.rect;
        if (horizontal) {
            place.setLeft(option.rect.left() + from);
            place.setWidth(to - from);
        } else {
            place.setTop(option.rect.top() + from);
            place.setHeight(to - from);
        }
        return QStyle::visualRect(option.direction, option.rect, place);
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return option.rect;
    case QStyle::SC_ScrollBarSlider:
        return span(start, start + length);
    case QStyle::SC_ScrollBarSubPage:
        return span(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return span(start + length, groove);
    default:
        return {};
    }
}

void drawScrollBar(const QStyleOptionSlider& option, QPainter& painter) {
    if (option.maximum <= option.minimum) return;
    const Theme& theme = currentTheme();
    const bool active = option.state & (QStyle::State_MouseOver | QStyle::State_Sunken);
    const int width = theme.length(active ? hoveredThumb : thumb);
    const int margin = theme.length(edgeMargin);
    QRect place = scrollBarPart(option, QStyle::SC_ScrollBarSlider);
    // It grows away from the edge, which is the trailing one of a vertical bar.
    if (option.orientation == Qt::Horizontal) {
        place.adjust(margin, 0, -margin, 0);
        place.setTop(option.rect.bottom() + 1 - margin - width);
        place.setHeight(width);
    } else {
        place.adjust(0, margin, 0, -margin);
        const bool atRight = option.direction == Qt::LeftToRight;
        place.setLeft(atRight ? option.rect.right() + 1 - margin - width : option.rect.left() + margin);
        place.setWidth(width);
    }
    const bool enabled = option.state & QStyle::State_Enabled;
    fillRounded(painter, place, width / 2.0, theme.color(enabled ? ColorRole::control : ColorRole::border));
}

int scrollBarExtent() {
    const Theme& theme = currentTheme();
    return theme.length(hoveredThumb) + 2 * theme.length(edgeMargin);
}

int shortestThumb() {
    return currentTheme().length(32);
}

} // namespace kestrin
