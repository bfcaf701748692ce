#pragma once

#include "dashboard/StatusRow.h"

#include <optional>
#include <vector>

class QVBoxLayout;

namespace kestrin {

class StatusRowWidget;

/// The rows of a layout of their own. They are kept and filled anew, so that a row keeps the keyboard's focus and a
/// screen reader's place.
class StatusRowList {
public:
    /// `layout` belongs to a widget that outlives the list.
    explicit StatusRowList(QVBoxLayout* layout) : layout_(layout) {}
    void show(const std::vector<StatusRow>& rows);

private:
    QVBoxLayout* layout_;
    std::vector<StatusRowWidget*> widgets_;
    std::vector<StatusRow> shown_;
};

} // namespace kestrin
