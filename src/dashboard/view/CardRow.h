#pragma once

#include "dashboard/view/ThemedWidget.h"

namespace kestrin {

/// A row of a card. A divided row has a hairline above it, from `leadingInset` to `trailingInset`.
class CardRow : public ThemedWidget {
public:
    using ThemedWidget::ThemedWidget;
    void setDivided(bool divided);

protected:
    void paintEvent(QPaintEvent* event) override;
    /// Copies `details` where the keyboard asks for it.
    void copyOnRequest(QKeyEvent* event, const QString& details);
    /// From the edge of the row, in lengths of the design.
    double leadingInset = 32;
    double trailingInset = 0;

private:
    bool divided_ = false;
};

} // namespace kestrin
