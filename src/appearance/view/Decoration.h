#pragma once

class QWidget;

namespace kestrin {

/// Keeps what only decorates away from screen readers: they take the widget for invisible. For classes derived from
/// QWidget itself.
void hideFromScreenReaders(QWidget* widget);

} // namespace kestrin
