#pragma once

#include "appearance/view/Theme.h"

#include <QPalette>

namespace kestrin {

/// The theme's colours for what Qt draws by itself: menus, selected text, placeholders.
[[nodiscard]] QPalette paletteOf(const Theme& theme);

} // namespace kestrin
