#pragma once

#include <QString>
#include <string>

class QPoint;
class QRect;
class QWidget;

namespace kestrin {

[[nodiscard]] inline QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

/// The tool tip of plain text: what it says may come from a server and is never markup.
[[nodiscard]] QString plainToolTip(const QString& text);

/// Shows a tool tip for a part of a painted widget, until the pointer leaves that part; hides it for no text.
void showDetails(QWidget* widget, const QPoint& globalPosition, const QRect& part, const std::string& details);

} // namespace kestrin
