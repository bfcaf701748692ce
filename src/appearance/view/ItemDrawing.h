#pragma once

#include <QStyleOption>

class QPainter;

namespace kestrin {

/// Behind an entry of a list: the accent's tint where it is selected, a fill under the pointer.
void drawItemPanel(const QStyleOption& option, QPainter& painter);
/// The focus of an entry or of a text, inside the rectangle and only after the keyboard was used.
void drawInnerFocus(const QStyleOption& option, QPainter& painter);
/// Behind a tool tip, a menu and the list of a picker.
void drawPopupPanel(const QStyleOption& option, QPainter& painter);

} // namespace kestrin
