#include "appearance/view/Divider.h"

#include "appearance/view/Decoration.h"
#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"

#include <QPainter>

namespace kestrin {

Divider::Divider(Qt::Orientation orientation, double inset, QWidget* parent)
    : QWidget(parent), orientation_(orientation), inset_(inset) {
    const bool horizontal = orientation == Qt::Horizontal;
    setSizePolicy(horizontal ? QSizePolicy::Expanding : QSizePolicy::Fixed,
        horizontal ? QSizePolicy::Fixed : QSizePolicy::Expanding);
    hideFromScreenReaders(this);
}

QSize Divider::sizeHint() const {
    return QSize(1, 1);
}

void Divider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const double ratio = devicePixelRatio();
    const double width = hairlineWidth(ratio);
    QRectF line = rect();
    if (orientation_ == Qt::Horizontal) {
        const int inset = currentTheme().length(inset_);
        line.adjust(layoutDirection() == Qt::LeftToRight ? inset : 0, 0,
            layoutDirection() == Qt::RightToLeft ? -inset : 0, 0);
        line.setHeight(width);
    } else {
        line.setWidth(width);
    }
    painter.fillRect(snapped(line, ratio), currentTheme().color(ColorRole::border));
}

} // namespace kestrin
