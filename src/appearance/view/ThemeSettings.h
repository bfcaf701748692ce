#pragma once

#include <QFont>

namespace kestrin {

/// What a theme is made from.
struct ThemeSettings {
    bool dark = false;
    bool highContrast = false;
    bool reducedMotion = false;
    QFont applicationFont = {}; ///< the user's font for bodies of text
    double logicalDpi = 96;     ///< of the screen, as Qt reports it

    bool operator==(const ThemeSettings&) const = default;
};

} // namespace kestrin
