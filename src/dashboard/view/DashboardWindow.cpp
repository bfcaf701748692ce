#include "dashboard/view/DashboardWindow.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"
#include "dashboard/view/WindowCorners.h"
#include "platform/Compositing.h"
#include "platform/PopoverPlacement.h"

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <chrono>

namespace kestrin {

namespace {

// The press of a click takes the focus away, its release arrives as the activation: a click takes no longer than
// this.
constexpr std::chrono::milliseconds longestClick{400};
constexpr double screenMargin = 24;

ScreenArea areaOf(const QScreen& screen) {
    return {.full = screen.geometry(),
        .available = screen.availableGeometry(),
        .devicePixelRatio = screen.devicePixelRatio()};
}

} // namespace

DashboardWindow::DashboardWindow(QWidget* content) : content_(content) {
    setWindowTitle("Kestrin");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
}

void DashboardWindow::toggle(std::optional<QPoint> click, const std::string& activationToken) {
    const bool closedByThisClick =
        sinceFocusWasLost_.isValid() && sinceFocusWasLost_.elapsed() < longestClick.count();
    sinceFocusWasLost_.invalidate();
    if (closedByThisClick) return;
    if (isVisible() && style_ == Style::Popover) {
        dismiss();
        return;
    }
    open(click, activationToken);
}

void DashboardWindow::open(std::optional<QPoint> click, const std::string& activationToken) {
    // Qt takes the token from the environment, which other threads read; elsewhere it is of no use.
    if (!activationToken.empty() && QGuiApplication::platformName().startsWith("wayland"))
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken));
    if (opensWhenFocusIsLost(click, activationToken)) return;
    // Also where it is open already: what it shows may have changed on the disk since.
    if (onOpen) onOpen();
    if (!isVisible()) {
        applyStyle();
        click_ = click;
        ensurePolished();
        resize(sizeForContent());
        heightForContent_ = height();
        if (style_ == Style::Popover) moveBeside(click_);
        if (onShow) onShow();
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

// Qt hears a moment late that a window which was hidden has lost the focus. Shown again before that, it would have
// the focus without Qt ever noticing, and the keyboard would reach none of its controls.
bool DashboardWindow::opensWhenFocusIsLost(std::optional<QPoint> click, const std::string& activationToken) {
    if (isVisible() || !windowHandle() || QGuiApplication::focusWindow() != windowHandle()) return false;
    connect(
        qGuiApp, &QGuiApplication::focusWindowChanged, this,
        [this, click, activationToken] { open(click, activationToken); },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    return true;
}

void DashboardWindow::applyStyle() {
    // A tool window rather than Qt's own kind of popup, which screen readers do not see.
    const Qt::WindowFlags flags =
        style_ == Style::Popover ? Qt::Tool | Qt::FramelessWindowHint : Qt::WindowFlags(Qt::Window);
    // Only a desktop that composes its windows shows what is behind the corners; elsewhere they would be black.
    const bool isTransparent = style_ == Style::Popover && windowsMayBeTransparent();
    if (testAttribute(Qt::WA_TranslucentBackground) != isTransparent) {
        // A native window keeps the kind of picture that it was made with.
        if (windowHandle()) destroy();
        setAttribute(Qt::WA_TranslucentBackground, isTransparent);
    }
    if (windowFlags() != flags) setWindowFlags(flags);
    const int outline = style_ == Style::Popover ? 1 : 0;
    layout()->setContentsMargins(outline, outline, outline, outline);
}

void DashboardWindow::paintEvent(QPaintEvent* /*event*/) {
    const Theme& theme = currentTheme();
    QPainter painter(this);
    if (style_ == Style::OrdinaryWindow) {
        painter.fillRect(rect(), theme.color(ColorRole::window));
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = windowCornerRadius(this);
    fillRounded(painter, QRectF(rect()), radius, theme.color(ColorRole::window));
    outlineRounded(
        painter, QRectF(rect()), radius, hairlineWidth(devicePixelRatioF()), theme.color(ColorRole::edge));
}

void DashboardWindow::moveBeside(std::optional<QPoint> click) {
    QList<ScreenArea> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.append(areaOf(*screen));
    if (screens.isEmpty()) return;
    const std::optional<PlacedClick> placed = click ? placeClick(*click, screens) : std::nullopt;
    const ScreenArea& screen = placed ? screens[placed->screen] : screens.front();
    const std::optional<QPoint> point = placed ? std::optional(placed->point) : std::nullopt;
    resize(size().boundedTo(screen.available.size()));
    move(popoverPosition(size(), point, panelEdge(screen, point), screen));
}

// Not the window's own hint nor adjustSize(): for a given width they ask the layouts within, which leave out the
// rows that scroll.
QSize DashboardWindow::sizeForContent() const {
    const QScreen* on = screen() ? screen() : QGuiApplication::primaryScreen();
    const int margin = currentTheme().length(screenMargin);
    const QSize most = on->availableSize() - QSize(margin, margin);
    return content_->sizeHint().grownBy(layout()->contentsMargins()).boundedTo(most);
}

// A first load, a notice or a longer error may need more room than there was at the opening. What the user resized
// by hand stays as it is until the content outgrows what it needed before.
void DashboardWindow::growToContent() {
    const int wanted = sizeForContent().height();
    if (wanted <= heightForContent_) return;
    heightForContent_ = wanted;
    if (wanted <= height() || isMaximized() || isFullScreen()) return;
    resize(width(), wanted);
    if (style_ == Style::Popover) moveBeside(click_);
}

// Hiding takes the focus away while the window still counts as visible; that is not the loss which closes it.
void DashboardWindow::dismiss() {
    isBeingDismissed_ = true;
    hide();
    isBeingDismissed_ = false;
}

bool DashboardWindow::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest && isVisible()) growToContent();
    return handled;
}

void DashboardWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange) return;
    if (style_ == Style::OrdinaryWindow) {
        if (isActiveWindow() && isVisible() && onOpen) onOpen();
        return;
    }
    if (isBeingDismissed_ || !isVisible() || isActiveWindow()) return;
    dismiss();
    sinceFocusWasLost_.start();
}

void DashboardWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && style_ == Style::Popover)
        dismiss();
    else
        QWidget::keyPressEvent(event);
}

} // namespace kestrin
