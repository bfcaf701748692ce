#pragma once

#include <QPixmap>
#include <QString>
#include <QStringList>

class QPainter;

namespace kestrin {

/// Draws a symbol, "checkmark.circle.fill" for example, centred in the square that fits into the rectangle.
/// "chevron.right" and "arrow.up.right.square" are mirrored if the painter's layout direction, or else the
/// application's, is right to left. An unknown name is an error of the program: nothing is drawn. Main thread.
void paintSymbol(QPainter& painter, const QRectF& rect, const QString& name, const QColor& color);

/// A symbol of size x size logical pixels; mirrored by the application's layout direction. Null for an unknown
/// name.
[[nodiscard]] QPixmap symbolPixmap(const QString& name, int size, const QColor& color, qreal devicePixelRatio);

/// The names of all symbols that are linked in.
[[nodiscard]] QStringList symbolNames();

} // namespace kestrin
