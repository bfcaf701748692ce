#pragma once

namespace kestrin {

/// What a colour is for. Theme knows its value for light, dark and high contrast.
enum class ColorRole {
    window,
    surface, ///< cards, bottom bars
    raised,  ///< fields, popups, the selected segment
    sidebar,
    well, ///< the track behind segments
    fill, ///< buttons and pickers
    fillHover,
    fillPressed,
    border,  ///< hairlines, decorative
    edge,    ///< the outline of the popover
    control, ///< outlines of fields and switches, thumbs of scroll bars
    text,
    secondary,
    disabled,
    accent, ///< as text, ring and marker
    accentFill,
    accentFillHover,
    accentFillPressed,
    onAccent,
    danger,
    onDanger
};

} // namespace kestrin
