#pragma once

#include <QSize>
#include <QStyleOptionButton>

class QPainter;

namespace kestrin {

/// Push buttons and tool buttons of every kind; the widget says the kind and may be null.
void drawButton(const QStyleOptionButton& option, QPainter& painter, const QWidget* widget);
[[nodiscard]] QSize buttonSize(const QStyleOptionButton& option, const QWidget* widget);

} // namespace kestrin
