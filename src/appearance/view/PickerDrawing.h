#pragma once

#include <QStyleOptionComboBox>

class QPainter;

namespace kestrin {

/// A combo box as a picker: a button that shows the choice and a chevron.
void drawPicker(const QStyleOptionComboBox& option, QPainter& painter, const QWidget* widget);
void drawPickerText(const QStyleOptionComboBox& option, QPainter& painter, const QWidget* widget);
/// For contents of that size.
[[nodiscard]] QSize pickerSize(const QSize& contents);
/// Where the text stands, and where the list opens: as wide as its entries, within reason.
[[nodiscard]] QRect pickerTextRect(const QStyleOptionComboBox& option);
[[nodiscard]] QRect pickerListRect(const QStyleOptionComboBox& option, const QWidget* widget);

} // namespace kestrin
