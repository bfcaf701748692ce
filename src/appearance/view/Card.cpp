#include "appearance/view/Card.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"

#include <QPainter>

namespace kestrin {

Card::Card(QWidget* parent) : QWidget(parent) {}

void Card::paintEvent(QPaintEvent*) {
    const Theme& theme = currentTheme();
    QPainter painter(this);
    const double radius = theme.length(10);
    fillRounded(painter, rect(), radius, theme.color(ColorRole::surface));
    outlineRounded(painter, rect(), radius, hairlineWidth(devicePixelRatio()), theme.color(ColorRole::border));
}

} // namespace kestrin
