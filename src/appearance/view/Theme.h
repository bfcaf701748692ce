#pragma once

#include "appearance/view/ColorRole.h"
#include "appearance/view/TextStyle.h"
#include "appearance/view/ThemeSettings.h"
#include "content/StateColor.h"

#include <QColor>

namespace kestrin {

/// Every colour, font and length that the windows are drawn with. A plain value; all colours are opaque.
class Theme {
public:
    [[nodiscard]] static Theme make(const ThemeSettings& settings);

    [[nodiscard]] QColor color(ColorRole role) const;
    /// The colour of a state for words, and for symbols, dots, bars and discs.
    [[nodiscard]] QColor stateText(StateColor state) const;
    [[nodiscard]] QColor stateMark(StateColor state) const;
    /// The state over the surface, for what is drawn on it: 0.12 of its text colour for a capsule, 0.14 of its mark
    /// colour for a disc. In high contrast it is the surface: draw it with paintTint, which adds the outline.
    [[nodiscard]] QColor stateTint(StateColor state, double opacity) const;
    /// The accent over a ground: 0.12 for a selection, 0.10 for the banner, 0.16 while it is hovered. In high
    /// contrast it is the surface.
    [[nodiscard]] QColor accentTint(double opacity, ColorRole ground = ColorRole::surface) const;

    /// Family, slant and, for body, caption and caption2, also the weight are the user's.
    [[nodiscard]] QFont font(TextStyle style) const;
    /// 1 for a font of 10 points at 96 dpi; never below 0.9.
    [[nodiscard]] double scale() const { return scale_; }
    /// Logical pixels for a length that is given for scale 1, rounded, at least 1 for a positive one.
    [[nodiscard]] int length(double px) const;
    /// Width of the focus ring in logical pixels.
    [[nodiscard]] int ringWidth() const;

    [[nodiscard]] bool isDark() const { return settings_.dark; }
    [[nodiscard]] bool isHighContrast() const { return settings_.highContrast; }
    [[nodiscard]] bool reducedMotion() const { return settings_.reducedMotion; }
    [[nodiscard]] const QFont& applicationFont() const { return settings_.applicationFont; }

    bool operator==(const Theme&) const = default;

private:
    explicit Theme(const ThemeSettings& settings);

    ThemeSettings settings_;
    double scale_ = 1;
};

/// The theme that everything is drawn with: light, in the application's font, until another one is set. Main
/// thread.
[[nodiscard]] const Theme& currentTheme();

/// Gives the application the theme's font and palette and tells every widget, which then lays itself out and
/// repaints: each receives StyleChange, and FontChange or PaletteChange where Qt sends them. Main thread, after the
/// application object.
void setCurrentTheme(const Theme& theme);

} // namespace kestrin
