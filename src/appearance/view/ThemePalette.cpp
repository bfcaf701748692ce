#include "appearance/view/ThemePalette.h"

namespace kestrin {

QPalette paletteOf(const Theme& theme) {
    // Qt derives the edges and shadows of Fusion from these two.
    QPalette palette(theme.color(ColorRole::fill), theme.color(ColorRole::window));
    const auto set = [&](QPalette::ColorRole role, ColorRole color) { palette.setColor(role, theme.color(color)); };
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        set(role, ColorRole::text);
    for (const auto role : {QPalette::Base, QPalette::AlternateBase, QPalette::ToolTipBase})
        set(role, ColorRole::raised);
    set(QPalette::PlaceholderText, ColorRole::secondary);
    set(QPalette::Highlight, ColorRole::accentFill);
    set(QPalette::HighlightedText, ColorRole::onAccent);
    set(QPalette::Link, ColorRole::accent);
    set(QPalette::LinkVisited, ColorRole::accent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText})
        palette.setColor(QPalette::Disabled, role, theme.color(ColorRole::disabled));
    palette.setColor(QPalette::Disabled, QPalette::Base, theme.color(ColorRole::raised));
    return palette;
}

} // namespace kestrin
