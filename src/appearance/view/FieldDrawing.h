#pragma once

#include <QStyleOption>

class QPainter;

namespace kestrin {

/// The panel of a line edit.
void drawField(const QStyleOption& option, QPainter& painter);
/// Around contents of that size, which include the two pixels that QLineEdit adds itself.
[[nodiscard]] QSize fieldSize(const QSize& contents);
[[nodiscard]] QRect fieldTextRect(const QRect& field);

} // namespace kestrin
