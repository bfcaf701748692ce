#pragma once

#include "platform/AppearanceSettings.h"
#include "platform/PortalSettings.h"
#include "platform/XSettingsClient.h"

#include <QDBusConnection>
#include <functional>
#include <memory>
#include <optional>

namespace kestrin {

/// Knows how the desktop wants its programs to look, and hears when that changes: from the settings portal, from
/// XSETTINGS and from Plasma's "kdeglobals". Nothing here waits for another program but the X server; until the
/// portal has answered, and without one, the defaults count. Main thread, while there is an application object.
class AppearanceFollower {
public:
    explicit AppearanceFollower(const std::optional<QDBusConnection>& bus);
    AppearanceFollower(const AppearanceFollower&) = delete;
    AppearanceFollower& operator=(const AppearanceFollower&) = delete;

    [[nodiscard]] const DesktopAppearance& appearance() const { return appearance_; }
    /// The appearance is another one now.
    std::function<void(const DesktopAppearance&)> onChange;

private:
    void takeFromPortal(const QString& nameSpace, const QString& key, const QVariant& value);
    void takeFromX();
    void update();

    AppearanceSettings settings_;
    DesktopAppearance appearance_;
    std::unique_ptr<XSettingsClient> xSettings_; ///< null where Plasma says all
    std::unique_ptr<PortalSettings> portal_;     ///< null without a bus
};

} // namespace kestrin
