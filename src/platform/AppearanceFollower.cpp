#include "platform/AppearanceFollower.h"

#include "platform/PlasmaFont.h"

namespace kestrin {

namespace {

const QString appearanceSpace = QStringLiteral("org.freedesktop.appearance");
const QString gnomeSpace = QStringLiteral("org.gnome.desktop.interface");
const QString plasmaSpace = QStringLiteral("org.kde.kdeglobals.General");

// A value of another type than the setting has counts as not set.

unsigned number(const QVariant& value) {
    return value.typeId() == QMetaType::UInt ? value.toUInt() : 0;
}

std::optional<std::string> text(const QVariant& value) {
    if (value.typeId() != QMetaType::QString) return std::nullopt;
    return value.toString().toStdString();
}

} // namespace

AppearanceFollower::AppearanceFollower(const std::optional<QDBusConnection>& bus) {
    settings_.desktop =
        desktopKind(qgetenv("XDG_CURRENT_DESKTOP").toStdString(), !qEnvironmentVariableIsEmpty("KDE_FULL_SESSION"));
    QStringList namespaces{appearanceSpace, gnomeSpace};
    if (settings_.desktop == DesktopKind::Plasma) {
        settings_.plasmaFont = plasmaFont();
        namespaces.append(plasmaSpace);
    } else {
        xSettings_ = std::make_unique<XSettingsClient>();
        xSettings_->onChange = [this] { takeFromX(); };
        takeFromX();
    }
    update();
    if (!bus) return;
    portal_ = std::make_unique<PortalSettings>(*bus, namespaces);
    portal_->onSetting = [this](const QString& nameSpace, const QString& key, const QVariant& value) {
        takeFromPortal(nameSpace, key, value);
    };
    portal_->onTold = [this] { update(); };
    portal_->start();
}

void AppearanceFollower::takeFromPortal(const QString& nameSpace, const QString& key, const QVariant& value) {
    if (nameSpace == appearanceSpace) {
        if (key == QLatin1String("color-scheme")) settings_.colorScheme = number(value);
        if (key == QLatin1String("contrast")) settings_.contrast = number(value);
    } else if (nameSpace == gnomeSpace) {
        if (key == QLatin1String("font-name")) settings_.gnomeFont = text(value);
        if (key == QLatin1String("text-scaling-factor"))
            settings_.textScale = value.typeId() == QMetaType::Double ? value.toDouble() : 1;
        if (key == QLatin1String("gtk-theme")) settings_.gtkTheme = text(value).value_or("");
        if (key == QLatin1String("enable-animations"))
            settings_.animations = value.typeId() != QMetaType::Bool || value.toBool();
    } else if (nameSpace == plasmaSpace && key == QLatin1String("font")) {
        // The portal says when, the file says what: it also holds what the portal was not told of.
        settings_.plasmaFont = plasmaFont();
    }
}

void AppearanceFollower::takeFromX() {
    const XSettings& found = xSettings_->settings();
    const auto font = found.find("Gtk/FontName");
    const auto* name = font == found.end() ? nullptr : std::get_if<std::string>(&font->second);
    settings_.xFont = name ? std::optional(*name) : std::nullopt;
    settings_.hasXResolution = found.contains("Xft/DPI");
    update();
}

void AppearanceFollower::update() {
    const DesktopAppearance now = desktopAppearance(settings_);
    if (now == appearance_) return;
    appearance_ = now;
    if (onChange) onChange(appearance_);
}

} // namespace kestrin
