#pragma once

#include <QAccessible>
#include <QWidget>

namespace kestrin {

/// Makes a widget one item of the given role for screen readers: its name and description are all that they are
/// told, and the widgets inside it are part of its picture. Before the widget is shown for the first time.
void makeAccessibleItem(QWidget* widget, QAccessible::Role role);

} // namespace kestrin
