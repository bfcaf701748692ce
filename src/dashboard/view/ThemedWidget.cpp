#include "dashboard/view/ThemedWidget.h"

#include <QEvent>

namespace kestrin {

void ThemedWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
        // Before the constructor of the subclass has ended there is nothing to apply it to.
        if (applied_) followTheme();
        break;
    case QEvent::LayoutDirectionChange:
        if (applied_) applyTheme(*applied_);
        break;
    default:
        break;
    }
}

void ThemedWidget::followTheme() {
    if (applied_ == currentTheme()) return;
    applied_ = currentTheme();
    applyTheme(*applied_);
    updateGeometry();
    update();
}

} // namespace kestrin
