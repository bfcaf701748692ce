#pragma once

#include <QImage>
#include <QList>
#include <QString>

namespace kestrin {

/// Makes the icons that are linked into the program readable under ":/kestrin/icons". Call once before using them;
/// further calls do nothing.
void registerIcons();

inline constexpr auto symbolicIconName = "app.kestrin.Kestrin-symbolic";
inline constexpr auto applicationIconName = "app.kestrin.Kestrin";

/// The symbolic icon's name where the desktop's icon theme has it, otherwise an empty text: panels that are given a
/// name prefer it to the picture even if they cannot find it.
[[nodiscard]] QString installedSymbolicIconName();

/// The symbolic icon as a picture, 16 to 48 pixels square: a light mark with a dark rim, because a picture cannot
/// follow the panel's colour and has to be read on any.
[[nodiscard]] QList<QImage> trayImages();

} // namespace kestrin
