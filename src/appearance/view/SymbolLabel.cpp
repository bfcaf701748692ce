#include "appearance/view/SymbolLabel.h"

#include "appearance/view/Decoration.h"
#include "appearance/view/Symbols.h"
#include "appearance/view/Theme.h"

#include <QPainter>

namespace kestrin {

SymbolLabel::SymbolLabel(const QString& name, double size, ColorRole color, QWidget* parent)
    : QWidget(parent), name_(name), size_(size), color_(color) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    hideFromScreenReaders(this);
}

void SymbolLabel::setSymbol(const QString& name) {
    name_ = name;
    update();
}

void SymbolLabel::setSize(double size) {
    size_ = size;
    updateGeometry();
    update();
}

void SymbolLabel::setColor(ColorRole color) {
    color_ = color;
    update();
}

void SymbolLabel::setColor(StateColor color) {
    color_ = color;
    update();
}

QSize SymbolLabel::sizeHint() const {
    const int side = currentTheme().length(size_);
    return QSize(side, side);
}

void SymbolLabel::paintEvent(QPaintEvent*) {
    const Theme& theme = currentTheme();
    QPainter painter(this);
    painter.setLayoutDirection(layoutDirection());
    QColor color = std::holds_alternative<ColorRole>(color_) ? theme.color(std::get<ColorRole>(color_))
                                                             : theme.stateMark(std::get<StateColor>(color_));
    if (!isEnabled()) color = theme.color(ColorRole::disabled);
    const double side = theme.length(size_);
    paintSymbol(painter, QRectF((width() - side) / 2, (height() - side) / 2, side, side), name_, color);
}

} // namespace kestrin
