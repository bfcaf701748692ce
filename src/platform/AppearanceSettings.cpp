#include "platform/AppearanceSettings.h"

#include "platform/FontName.h"

#include <algorithm>
#include <cmath>

namespace kestrin {

namespace {

constexpr double leastPoints = 5;
constexpr double mostPoints = 72;
// The bounds of GNOME's own setting.
constexpr double leastTextScale = 0.5;
constexpr double mostTextScale = 3;

std::optional<FontName> fontOf(const AppearanceSettings& settings) {
    switch (settings.desktop) {
    case DesktopKind::Gnome: {
        const auto font = settings.gnomeFont ? fontFromPango(*settings.gnomeFont) : std::nullopt;
        // Without a portal GNOME still announces its font to X programs.
        return font || !settings.xFont ? font : fontFromPango(*settings.xFont);
    }
    case DesktopKind::Plasma: {
        const auto font = settings.plasmaFont ? fontFromQt(*settings.plasmaFont) : std::nullopt;
        return font ? font : FontName{"Noto Sans", 10};
    }
    case DesktopKind::Other:
        return settings.xFont ? fontFromPango(*settings.xFont) : std::nullopt;
    }
    return std::nullopt;
}

// Under X, GNOME's text scale is part of the resolution that it announces to all programs.
double textScaleOf(const AppearanceSettings& settings) {
    if (settings.desktop != DesktopKind::Gnome || settings.hasXResolution) return 1;
    if (!std::isfinite(settings.textScale) || settings.textScale <= 0) return 1;
    return std::clamp(settings.textScale, leastTextScale, mostTextScale);
}

} // namespace

DesktopKind desktopKind(std::string_view currentDesktop, bool kdeFullSession) {
    while (!currentDesktop.empty()) {
        const std::string_view name = currentDesktop.substr(0, currentDesktop.find(':'));
        currentDesktop.remove_prefix(std::min(currentDesktop.size(), name.size() + 1));
        if (name == "KDE") return DesktopKind::Plasma;
        if (name.starts_with("GNOME") || name == "Unity" || name == "Budgie" || name == "Pantheon")
            return DesktopKind::Gnome;
    }
    return kdeFullSession ? DesktopKind::Plasma : DesktopKind::Other;
}

DesktopAppearance desktopAppearance(const AppearanceSettings& settings) {
    DesktopAppearance appearance;
    if (const std::optional<FontName> font = fontOf(settings)) {
        if (!font->family.empty()) appearance.fontFamily = font->family;
        appearance.fontPoints = font->points;
    }
    appearance.fontPoints = std::clamp(appearance.fontPoints * textScaleOf(settings), leastPoints, mostPoints);
    appearance.dark = settings.colorScheme == 1;
    // GNOME says it by the theme's name where its portal does not know contrast yet.
    appearance.highContrast = settings.contrast == 1 || settings.gtkTheme.starts_with("HighContrast");
    appearance.reducedMotion = !settings.animations;
    return appearance;
}

} // namespace kestrin
