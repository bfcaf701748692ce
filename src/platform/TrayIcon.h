#pragma once

#include <QPoint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// One line of the tray icon's menu. A separator needs neither id nor label.
struct TrayMenuEntry {
    std::string id; ///< what `onMenu` is told; unique within a menu
    std::string label;
    bool enabled = true;
    bool separator = false;

    bool operator==(const TrayMenuEntry&) const = default;
};

/// The icon in the desktop's panel. It may be shown long before a panel exists, and it outlives restarts of the
/// panel. Nothing here blocks on the panel. Main thread only; every callback arrives from the event loop, never
/// from inside a call of this class, so a callback may open a dialog or destroy the icon.
class TrayIcon {
public:
    virtual ~TrayIcon() = default;

    virtual void show() = 0;
    virtual void hide() = 0;
    /// Replaces the whole menu. An entry that keeps its id keeps its identity in a menu that is already open.
    virtual void setMenu(std::vector<TrayMenuEntry> entries) = 0;
    /// Whether a panel shows the icon now. False until the panel has answered.
    [[nodiscard]] virtual bool isHosted() const = 0;
    /// The token that lets the last activation raise a window, or an empty text. It can be taken once.
    [[nodiscard]] virtual std::string takeActivationToken() = 0;

    /// A click on the icon, with its place in native pixels of the whole desktop where the panel tells it.
    std::function<void(std::optional<QPoint>)> onActivate;
    std::function<void(const std::string& id)> onMenu;
    /// Told once with the first answer after `show`, then at every change.
    std::function<void(bool hosted)> onHostedChanged;
};

} // namespace kestrin
