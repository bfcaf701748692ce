#pragma once

#include "platform/DesktopAppearance.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// Which desktops keep the font in which place.
enum class DesktopKind {
    Gnome,  ///< "org.gnome.desktop.interface"
    Plasma, ///< "kdeglobals"
    Other,  ///< XSETTINGS, where there is an X server
};

/// From XDG_CURRENT_DESKTOP, a list with ":", and whether KDE_FULL_SESSION is set.
[[nodiscard]] DesktopKind desktopKind(std::string_view currentDesktop, bool kdeFullSession);

/// The settings as the desktop keeps them. What is absent is not known, and the desktop's own default counts.
struct AppearanceSettings {
    DesktopKind desktop = DesktopKind::Other;

    // org.freedesktop.appearance
    unsigned colorScheme = 0; ///< 1 dark, 2 light
    unsigned contrast = 0;    ///< 1 high

    // org.gnome.desktop.interface
    std::optional<std::string> gnomeFont = {};
    double textScale = 1;
    std::string gtkTheme = {};
    bool animations = true;

    std::optional<std::string> plasmaFont = {}; ///< "font" of "[General]" in kdeglobals

    // XSETTINGS
    std::optional<std::string> xFont = {}; ///< "Gtk/FontName"
    bool hasXResolution = false;           ///< there is an "Xft/DPI", by which Qt scales everything
};

/// What follows from the settings. A damaged one counts as absent.
[[nodiscard]] DesktopAppearance desktopAppearance(const AppearanceSettings& settings);

} // namespace kestrin
