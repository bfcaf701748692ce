#include "monitoring/application/AppDelegate.h"

#include "dashboard/PopoverContent.h"
#include "monitoring/application/ApplicationAppearance.h"
#include "platform/EventProcessing.h"

#include <QApplication>
#include <chrono>
#include <utility>

namespace kestrin {

namespace {

// A panel that starts along with the session takes a moment; only after it is there known to be none.
constexpr std::chrono::seconds hostGracePeriod{5};
constexpr std::chrono::seconds shutdownPatience{2};

} // namespace

AppDelegate::AppDelegate(const std::filesystem::path& stateRoot, AppearanceFollower& appearance,
    std::unique_ptr<TrayIcon> tray, std::vector<std::string> launchNotices)
    : appearance_(appearance), formats_(LocaleFormats::fromEnvironment()), launchNotices_(std::move(launchNotices)),
      graph_(stateRoot, executor_, clock_), tray_(std::move(tray)) {
    modelChanges_ = graph_.model().onChange([this] { modelChanged(); });
    if (tray_) {
        connectTray();
        tray_->show();
    } else {
        window().open(std::nullopt, {});
    }
}

PopoverWindow& AppDelegate::window() {
    if (window_) return *window_;
    applyAndFollow(appearance_);
    view_ = new PopoverView({.startOrStop = [this] { startOrStop(); },
        .checkNow = [this] { graph_.model().checkNow(); },
        .quit = [this] { requestQuit(); }});
    window_ = std::make_unique<PopoverWindow>(view_);
    window_->onOpen = [this] {
        graph_.model().refreshIfStateChanged();
        redraw();
    };
    return *window_;
}

void AppDelegate::connectTray() {
    tray_->onActivate = [this](std::optional<QPoint> click) {
        windowInStyle().toggle(click, tray_->takeActivationToken());
    };
    tray_->onMenu = [this](const std::string& id) { runMenuCommand(id); };
    tray_->onHostedChanged = [this](bool hosted) {
        if (hosted) hostGrace_.stop();
    };
    updateMenu();

    // Nobody who started the program should be left looking at nothing.
    hostGrace_.setSingleShot(true);
    QObject::connect(&hostGrace_, &QTimer::timeout, &hostGrace_, [this] {
        if (!tray_->isHosted()) activate({});
    });
    hostGrace_.start(hostGracePeriod);
}

void AppDelegate::activate(const std::string& activationToken) {
    hostGrace_.stop();
    windowInStyle().open(std::nullopt, activationToken);
}

// Only X11 lets a client place its windows, and only a panel's icon gives a popover a place and a way back.
PopoverWindow& AppDelegate::windowInStyle() {
    if (window().isVisible()) return window();
    const bool canPlaceWindows = QGuiApplication::platformName() == "xcb";
    const bool hosted = tray_ && tray_->isHosted();
    window().setStyle(
        canPlaceWindows && hosted ? PopoverWindow::Style::Popover : PopoverWindow::Style::OrdinaryWindow);
    return window();
}

void AppDelegate::modelChanged() {
    updateMenu();
    // However many changes one turn of the event loop brings, they are drawn once, and not at all while nothing
    // shows.
    if (!window_ || !window_->isVisible() || std::exchange(redrawIsDue_, true)) return;
    executor_.post([this] {
        redrawIsDue_ = false;
        redraw();
    });
}

void AppDelegate::redraw() {
    PopoverContent content = popoverContent(graph_.model(), formats_);
    content.notices.insert(content.notices.begin(), launchNotices_.begin(), launchNotices_.end());
    view_->show(content);
}

void AppDelegate::updateMenu() {
    const bool showsStop = graph_.model().isMonitoring();
    if (!tray_ || menuShowsStop_ == showsStop) return;
    menuShowsStop_ = showsStop;
    tray_->setMenu({{.id = "dashboard", .label = "Open dashboard"},
        {.id = "start-stop", .label = showsStop ? "Stop" : "Start"}, {.id = "", .label = "", .separator = true},
        {.id = "quit", .label = "Quit"}});
}

void AppDelegate::runMenuCommand(const std::string& id) {
    if (id == "dashboard")
        activate(tray_->takeActivationToken());
    else if (id == "start-stop")
        startOrStop();
    else if (id == "quit")
        requestQuit();
}

void AppDelegate::requestQuit() {
    QApplication::quit();
}

void AppDelegate::startOrStop() {
    AppModel& model = graph_.model();
    if (model.isMonitoring())
        model.stopMonitoring();
    else
        model.startMonitoring();
}

bool AppDelegate::shutDown() {
    hostGrace_.stop();
    if (tray_) tray_->hide();
    modelChanges_.end();
    if (window_) window_->hide();
    const bool allEnded = graph_.shutDown(
        [](const std::function<bool()>& isOver) { return processEventsUntil(isOver, shutdownPatience); });
    executor_.drain();
    return allEnded;
}

} // namespace kestrin
