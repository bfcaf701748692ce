#pragma once

#include "platform/AppearanceFollower.h"

#include <QPalette>

namespace kestrin {

/// Light or dark, in plain black and white where the desktop asks for high contrast.
[[nodiscard]] QPalette paletteFor(const DesktopAppearance& appearance);

/// Gives the whole application that font and those colours, now and whenever it is called again; windows that are
/// open follow. Widgets are drawn by Fusion, the one style that every Qt has. Main thread.
void applyAppearance(const DesktopAppearance& appearance);

/// Does that with what the desktop says now and whenever it changes. Before the first window and not sooner: a
/// program at rest needs no colours, which would cost it 0.1 MB.
void applyAndFollow(AppearanceFollower& appearance);

} // namespace kestrin
