#include "dashboard/view/StatusRowList.h"

#include "dashboard/view/StatusRowWidget.h"

#include <QVBoxLayout>

namespace kestrin {

void StatusRowList::show(const std::vector<StatusRow>& rows) {
    while (widgets_.size() > rows.size()) {
        widgets_.back()->deleteLater();
        layout_->removeWidget(widgets_.back());
        widgets_.pop_back();
    }
    shown_.resize(widgets_.size());
    while (widgets_.size() < rows.size()) {
        auto* widget = new StatusRowWidget;
        layout_->addWidget(widget);
        // Left to the layout it would be shown in a later turn, and would not count until then.
        widget->setVisible(true);
        widgets_.push_back(widget);
    }
    for (std::size_t index = 0; index < rows.size(); ++index)
        if (index >= shown_.size() || shown_[index] != rows[index]) widgets_[index]->show(rows[index]);
    shown_ = rows;
}

} // namespace kestrin
