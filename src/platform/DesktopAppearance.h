#pragma once

#include <string>

namespace kestrin {

/// What the user has chosen for the whole desktop and every program should follow.
struct DesktopAppearance {
    std::string fontFamily = "Sans Serif"; ///< as fontconfig knows it, aliases included
    double fontPoints = 10;                ///< the desktop's text scale included
    bool dark = false;
    bool highContrast = false;
    bool reducedMotion = false;

    friend bool operator==(const DesktopAppearance&, const DesktopAppearance&) = default;
};

} // namespace kestrin
