#include "appearance/view/FieldDrawing.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace kestrin {

namespace {

// QLineEdit keeps two more pixels free; together they are the 10 of the design.
constexpr double padding = 8;

} // namespace

void drawField(const QStyleOption& option, QPainter& painter) {
    const Theme& theme = currentTheme();
    const double radius = theme.length(7);
    const bool enabled = option.state & QStyle::State_Enabled;
    fillRounded(painter, option.rect, radius, theme.color(ColorRole::raised));
    if (enabled && option.state & QStyle::State_HasFocus) {
        outlineRounded(painter, option.rect, radius, theme.ringWidth(), theme.color(ColorRole::accent));
        return;
    }
    const bool hovered = option.state & QStyle::State_MouseOver;
    const ColorRole faint = theme.isHighContrast() ? ColorRole::disabled : ColorRole::border;
    const ColorRole role = !enabled ? faint : hovered ? ColorRole::text : ColorRole::control;
    outlineRounded(painter, option.rect, radius, theme.length(1), theme.color(role));
}

QSize fieldSize(const QSize& contents) {
    const Theme& theme = currentTheme();
    return QSize(contents.width() + 2 * theme.length(padding), std::max(contents.height(), theme.length(32)));
}

QRect fieldTextRect(const QRect& field) {
    const int free = currentTheme().length(padding);
    return field.adjusted(free, 1, -free, -1);
}

} // namespace kestrin
