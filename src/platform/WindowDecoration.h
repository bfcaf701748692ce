#pragma once

namespace kestrin {

/// Under Wayland GNOME leaves title bars to the programs, and Qt 6.8 draws GNOME's own kind only if it sees the
/// name of the desktop. Names that kind in QT_WAYLAND_DECORATION where nobody named another one, since the desktop
/// is hidden from Qt. Before there are other threads, and before the hiding.
void nameWindowDecoration();

} // namespace kestrin
