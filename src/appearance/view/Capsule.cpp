#include "appearance/view/Capsule.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"

#include <QPainter>

namespace kestrin {

Capsule::Capsule(TextStyle style, QWidget* parent) : ThemedLabel(style, ColorRole::secondary, parent) {
    setColor(state_);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Capsule::setState(StateColor state) {
    state_ = state;
    setColor(state);
}

QSize Capsule::sizeHint() const {
    const Theme& theme = currentTheme();
    const int padding = theme.length(9);
    return QSize(
        fontMetrics().horizontalAdvance(text()) + 1 + 2 * padding, fontMetrics().height() + 2 * theme.length(2));
}

void Capsule::paintEvent(QPaintEvent*) {
    const Theme& theme = currentTheme();
    QPainter painter(this);
    paintTint(painter, rect(), height() / 2.0, theme.stateTint(state_, 0.12), theme.stateText(state_));
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.setPen(theme.stateText(state_));
    painter.setFont(font());
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

} // namespace kestrin
