#pragma once

#include "dashboard/view/PopoverView.h"
#include "dashboard/view/PopoverWindow.h"
#include "monitoring/application/MonitoringGraph.h"
#include "platform/AppearanceFollower.h"
#include "platform/QtExecutor.h"
#include "platform/TimerfdClock.h"
#include "platform/TrayIcon.h"
#include "text/LocaleFormats.h"

#include <QTimer>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kestrin {

/// Owns the object graph and the life of the process: builds everything at launch in a set order, ties the tray
/// icon and the popover to the model, and shuts everything down. Main thread.
class AppDelegate {
public:
    /// `appearance` outlives the object. `tray` may be null: without a session bus there is no panel to show an
    /// icon in.
    AppDelegate(const std::filesystem::path& stateRoot, AppearanceFollower& appearance,
        std::unique_ptr<TrayIcon> tray, std::vector<std::string> launchNotices);

    /// The program was started again, or its desktop asks for it: shows the dashboard.
    void activate(const std::string& activationToken);

    /// False when something has not ended: the process must then end without running destructors.
    [[nodiscard]] bool shutDown();

private:
    void connectTray();
    void updateMenu();
    void modelChanged();
    void redraw();
    void runMenuCommand(const std::string& id);
    void startOrStop();
    /// The user wants to quit. A termination signal and the end of the session do not come here.
    void requestQuit();
    /// The dashboard, made when it is first wanted: most runs begin at login and rest in the panel for long, and
    /// the fonts alone that a window needs cost memory and time.
    PopoverWindow& window();
    PopoverWindow& windowInStyle();

    AppearanceFollower& appearance_;
    QtExecutor executor_;
    TimerfdClock clock_;
    LocaleFormats formats_;
    std::vector<std::string> launchNotices_;
    MonitoringGraph graph_;
    ChangeListeners::Subscription modelChanges_;
    std::unique_ptr<PopoverWindow> window_; ///< none before the first opening
    PopoverView* view_ = nullptr;           ///< owned by the window
    std::unique_ptr<TrayIcon> tray_;
    QTimer hostGrace_;
    bool redrawIsDue_ = false;
    std::optional<bool> menuShowsStop_;
};

} // namespace kestrin
