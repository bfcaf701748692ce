#pragma once

#include <QStyleOption>

class QPainter;

namespace kestrin {

/// The indicator of a check box as a switch, in the option's rectangle.
void drawSwitch(const QStyleOption& option, QPainter& painter, const QWidget* widget);

} // namespace kestrin
