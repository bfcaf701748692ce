#pragma once

#include <QBoxLayout>
#include <QWidget>
#include <vector>

namespace kestrin {

/// The rows of a layout of their own. They are kept and filled anew, so that a row keeps the keyboard's focus and a
/// screen reader's place. `Row` is a `CardRow` that shows a `Content`.
template <class Row, class Content> class RowList {
public:
    /// `layout` belongs to a widget that outlives the list.
    explicit RowList(QBoxLayout* layout) : layout_(layout) {}

    void show(const std::vector<Content>& contents) {
        while (rows_.size() > contents.size()) {
            layout_->removeWidget(rows_.back());
            // Hide it now: `deleteLater` takes effect only in the next turn of the event loop.
            rows_.back()->hide();
            rows_.back()->deleteLater();
            rows_.pop_back();
        }
        shown_.resize(rows_.size());
        while (rows_.size() < contents.size()) {
            auto* row = new Row(layout_->parentWidget());
            row->setDivided(!rows_.empty());
            layout_->addWidget(row);
            // Left to the layout it would be shown in a later turn, and would not count until then.
            row->setVisible(true);
            rows_.push_back(row);
        }
        for (std::size_t index = 0; index < contents.size(); ++index)
            if (index >= shown_.size() || shown_[index] != contents[index]) rows_[index]->show(contents[index]);
        shown_ = contents;
    }

private:
    QBoxLayout* layout_;
    std::vector<Row*> rows_;
    std::vector<Content> shown_;
};

} // namespace kestrin
