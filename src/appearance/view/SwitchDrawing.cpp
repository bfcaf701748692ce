#include "appearance/view/SwitchDrawing.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/SwitchKnob.h"
#include "appearance/view/Theme.h"

#include <QPainter>
#include <QStyle>

namespace kestrin {

namespace {

constexpr double disabledOpacity = 0.45;

} // namespace

void drawSwitch(const QStyleOption& option, QPainter& painter, const QWidget* widget) {
    const Theme& theme = currentTheme();
    const bool on = option.state & QStyle::State_On;
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool hovered = enabled && option.state & QStyle::State_MouseOver;
    const QRectF track = option.rect;
    const double radius = track.height() / 2;

    painter.save();
    if (!enabled) painter.setOpacity(disabledOpacity);
    if (on) {
        fillRounded(
            painter, track, radius, theme.color(hovered ? ColorRole::accentFillHover : ColorRole::accentFill));
    } else {
        fillRounded(painter, track, radius, theme.color(ColorRole::raised));
        outlineRounded(painter, track, radius, 1.5 * theme.scale(),
            theme.color(hovered ? ColorRole::text : ColorRole::control));
    }

    const double knob = theme.length(on ? 13 : 12);
    const double margin = (track.height() - knob) / 2;
    const SwitchKnob* motion = SwitchKnob::of(widget);
    double position = motion ? motion->position() : on ? 1 : 0;
    if (option.direction == Qt::RightToLeft) position = 1 - position;
    const double x = track.left() + margin + position * (track.width() - knob - 2 * margin);
    fillRounded(painter, QRectF(x, track.top() + margin, knob, knob), knob / 2,
        theme.color(on ? ColorRole::onAccent : ColorRole::control));
    painter.restore();
}

} // namespace kestrin
