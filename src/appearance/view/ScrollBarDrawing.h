#pragma once

#include <QStyle>
#include <QStyleOptionSlider>

class QPainter;

namespace kestrin {

/// Scroll bars are a thumb alone, without arrows or track.
void drawScrollBar(const QStyleOptionSlider& option, QPainter& painter);
[[nodiscard]] QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part);
/// Width of the bar, which lies over the margin of what it scrolls.
[[nodiscard]] int scrollBarExtent();
[[nodiscard]] int shortestThumb();

} // namespace kestrin
