#include "appearance/view/ItemDrawing.h"

#include "appearance/view/KeyboardFocus.h"
#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"

#include <QPainter>
#include <QStyle>

namespace kestrin {

void drawItemPanel(const QStyleOption& option, QPainter& painter) {
    const Theme& theme = currentTheme();
    const double radius = theme.length(6);
    if (option.state & QStyle::State_Selected)
        paintTint(painter, option.rect, radius, theme.accentTint(0.12, ColorRole::raised),
            theme.color(ColorRole::accent));
    else if (option.state & QStyle::State_Enabled && option.state & QStyle::State_MouseOver)
        fillRounded(painter, option.rect, radius, theme.color(ColorRole::fill));
}

void drawInnerFocus(const QStyleOption& option, QPainter& painter) {
    if (!KeyboardFocus::inUse()) return;
    const Theme& theme = currentTheme();
    outlineRounded(painter, option.rect, theme.length(6), theme.ringWidth(), theme.color(ColorRole::accent));
}

void drawPopupPanel(const QStyleOption& option, QPainter& painter) {
    painter.fillRect(option.rect, currentTheme().color(ColorRole::raised));
    outlineRounded(painter, option.rect, 0, hairlineWidth(painter.device()->devicePixelRatio()),
        currentTheme().color(ColorRole::edge));
}

} // namespace kestrin
