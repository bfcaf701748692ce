#include "dashboard/view/PopoverWindow.h"

#include "platform/PopoverPlacement.h"

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
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

ScreenArea areaOf(const QScreen& screen) {
    return {.full = screen.geometry(),
        .available = screen.availableGeometry(),
        .devicePixelRatio = screen.devicePixelRatio()};
}

} // namespace

PopoverWindow::PopoverWindow(QWidget* content) : content_(content) {
    setWindowTitle("Kestrin");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
}

void PopoverWindow::toggle(std::optional<QPoint> click, const std::string& activationToken) {
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

void PopoverWindow::open(std::optional<QPoint> click, const std::string& activationToken) {
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
bool PopoverWindow::opensWhenFocusIsLost(std::optional<QPoint> click, const std::string& activationToken) {
    if (isVisible() || !windowHandle() || QGuiApplication::focusWindow() != windowHandle()) return false;
    connect(
        qGuiApp, &QGuiApplication::focusWindowChanged, this,
        [this, click, activationToken] { open(click, activationToken); },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    return true;
}

void PopoverWindow::applyStyle() {
    // A tool window rather than Qt's own kind of popup, which screen readers do not see.
    const Qt::WindowFlags flags =
        style_ == Style::Popover ? Qt::Tool | Qt::FramelessWindowHint : Qt::WindowFlags(Qt::Window);
    if (windowFlags() != flags) setWindowFlags(flags);
    setFrameStyle(style_ == Style::Popover ? QFrame::StyledPanel | QFrame::Plain : QFrame::NoFrame);
}

void PopoverWindow::moveBeside(std::optional<QPoint> click) {
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
QSize PopoverWindow::sizeForContent() const {
    return content_->sizeHint().grownBy(contentsMargins());
}

// A first load, a notice or a longer error may need more room than there was at the opening. What the user resized
// by hand stays as it is until the content outgrows what it needed before.
void PopoverWindow::growToContent() {
    const int wanted = std::min(sizeForContent().height(), screen()->availableSize().height());
    if (wanted <= heightForContent_) return;
    heightForContent_ = wanted;
    if (wanted <= height() || isMaximized() || isFullScreen()) return;
    resize(width(), wanted);
    if (style_ == Style::Popover) moveBeside(click_);
}

// Hiding takes the focus away while the window still counts as visible; that is not the loss which closes it.
void PopoverWindow::dismiss() {
    isBeingDismissed_ = true;
    hide();
    isBeingDismissed_ = false;
}

bool PopoverWindow::event(QEvent* event) {
    const bool handled = QFrame::event(event);
    if (event->type() == QEvent::LayoutRequest && isVisible()) growToContent();
    return handled;
}

void PopoverWindow::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() != QEvent::ActivationChange) return;
    if (style_ == Style::OrdinaryWindow) {
        if (isActiveWindow() && isVisible() && onOpen) onOpen();
        return;
    }
    if (isBeingDismissed_ || !isVisible() || isActiveWindow()) return;
    dismiss();
    sinceFocusWasLost_.start();
}

void PopoverWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && style_ == Style::Popover)
        dismiss();
    else
        QFrame::keyPressEvent(event);
}

} // namespace kestrin
