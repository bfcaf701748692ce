#include "appearance/view/Spinner.h"

#include "appearance/view/Decoration.h"
#include "appearance/view/Theme.h"

#include <QEvent>
#include <QPainter>
#include <QTimerEvent>

namespace kestrin {

namespace {

constexpr int steps = 12; ///< of one turn, and in one second
constexpr int sixteenthsOfTurn = 360 * 16;

} // namespace

Spinner::Spinner(double size, QWidget* parent) : QWidget(parent), size_(size) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    hideFromScreenReaders(this);
}

QSize Spinner::sizeHint() const {
    const int side = currentTheme().length(size_);
    return QSize(side, side);
}

void Spinner::paintEvent(QPaintEvent*) {
    const Theme& theme = currentTheme();
    const double line = theme.length(2);
    const double side = theme.length(size_) - line;
    const QRectF ring((width() - side) / 2, (height() - side) / 2, side, side);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // In high contrast the ring has the colour of text, which would hide the arc.
    if (!theme.isHighContrast()) {
        painter.setPen(QPen(theme.color(ColorRole::border), line));
        painter.drawEllipse(ring);
    }
    painter.setPen(QPen(theme.color(ColorRole::accent), line, Qt::SolidLine, Qt::RoundCap));
    const int start = sixteenthsOfTurn / 4 - step_ * (sixteenthsOfTurn / steps);
    painter.drawArc(ring, start, -sixteenthsOfTurn / 4);
}

void Spinner::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    turnIfVisible();
}

void Spinner::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    turnIfVisible();
}

void Spinner::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) return QWidget::timerEvent(event);
    step_ = (step_ + 1) % steps;
    update();
}

void Spinner::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange) turnIfVisible();
}

void Spinner::turnIfVisible() {
    const bool turns = isVisible() && !currentTheme().reducedMotion();
    if (turns == timer_.isActive()) return;
    if (turns)
        timer_.start(1000 / steps, this);
    else
        timer_.stop();
}

} // namespace kestrin
