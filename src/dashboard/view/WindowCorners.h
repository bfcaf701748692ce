#pragma once

#include "appearance/view/Theme.h"

#include <QWidget>

namespace kestrin {

/// The radius of the corners of a widget's window: round where the desktop composes its windows, otherwise 0. What
/// fills the window up to its corners has to be as round.
[[nodiscard]] inline double windowCornerRadius(const QWidget* widget) {
    return widget->window()->testAttribute(Qt::WA_TranslucentBackground) ? currentTheme().length(12) : 0;
}

} // namespace kestrin
