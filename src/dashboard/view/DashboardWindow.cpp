#include "dashboard/view/DashboardWindow.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"
#include "dashboard/view/WindowCorners.h"
#include "platform/Compositing.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

namespace kestrin {

namespace {

constexpr double screenMargin = 24;

} // namespace

void DashboardWindow::applyStyle() {
    // Without a compositing desktop, the area behind round corners would be black.
    const bool isTransparent = windowStyle() == Style::Popover && windowsMayBeTransparent();
    if (testAttribute(Qt::WA_TranslucentBackground) != isTransparent) {
        // A native window cannot change its pixel format.
        if (windowHandle()) destroy();
        setAttribute(Qt::WA_TranslucentBackground, isTransparent);
    }
    PopoverWindow::applyStyle();
    setFrameStyle(QFrame::NoFrame);
    const int outline = windowStyle() == Style::Popover ? 1 : 0;
    setContentsMargins(outline, outline, outline, outline);
}

QSize DashboardWindow::sizeForContent() const {
    const QScreen* on = screen() ? screen() : QGuiApplication::primaryScreen();
    const int margin = currentTheme().length(screenMargin);
    return PopoverWindow::sizeForContent().boundedTo(on->availableSize() - QSize(margin, margin));
}

void DashboardWindow::paintEvent(QPaintEvent* /*event*/) {
    const Theme& theme = currentTheme();
    QPainter painter(this);
    if (windowStyle() == Style::OrdinaryWindow) {
        painter.fillRect(rect(), theme.color(ColorRole::window));
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = windowCornerRadius(this);
    fillRounded(painter, QRectF(rect()), radius, theme.color(ColorRole::window));
    outlineRounded(
        painter, QRectF(rect()), radius, hairlineWidth(devicePixelRatioF()), theme.color(ColorRole::edge));
}

} // namespace kestrin
