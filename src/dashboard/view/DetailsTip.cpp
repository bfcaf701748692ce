#include "dashboard/view/DetailsTip.h"

#include <QPoint>
#include <QRect>
#include <QToolTip>
#include <QWidget>

namespace kestrin {

// Qt would interpret text that looks like markup as rich text.
QString plainToolTip(const QString& text) {
    if (text.isEmpty()) return text;
    return "<p style='white-space:pre-wrap'>" + text.toHtmlEscaped() + "</p>";
}

void showDetails(QWidget* widget, const QPoint& globalPosition, const QRect& part, const std::string& details) {
    if (details.empty())
        QToolTip::hideText();
    else
        QToolTip::showText(globalPosition, plainToolTip(text(details)), widget, part);
}

} // namespace kestrin
