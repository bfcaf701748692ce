#pragma once

#include "appearance/view/Theme.h"
#include "platform/AppearanceFollower.h"

namespace kestrin {

/// For the primary screen. Main thread.
[[nodiscard]] Theme themeFor(const DesktopAppearance& appearance);

/// Gives the whole application that theme, now and whenever it is called again; windows that are open follow.
/// Widgets are drawn by KestrinStyle. Main thread.
void applyAppearance(const DesktopAppearance& appearance);

/// Does that with what the desktop says now and whenever it changes. Before the first window and not sooner: a
/// program at rest needs no colours, which would cost it 0.1 MB.
void applyAndFollow(AppearanceFollower& appearance);

} // namespace kestrin
