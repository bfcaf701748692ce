#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace kestrin {

/// Width of a hairline in logical pixels: floor(ratio) device pixels.
[[nodiscard]] double hairlineWidth(double devicePixelRatio);

/// The rectangle with its edges moved to the nearest device pixels.
[[nodiscard]] QRectF snapped(const QRectF& rect, double devicePixelRatio);

void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color);

/// A line of that width inside the rectangle's edge.
void outlineRounded(QPainter& painter, const QRectF& rect, double radius, double width, const QColor& color);

/// Fills with a tint of the theme. In high contrast, where tints are the surface, it adds an outline of 2 in the
/// colour of the tint's text.
void paintTint(QPainter& painter, const QRectF& rect, double radius, const QColor& tint, const QColor& text);

} // namespace kestrin
