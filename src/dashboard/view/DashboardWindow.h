#pragma once

#include "dashboard/view/PopoverWindow.h"

namespace kestrin {

/// The popover's window in the look of the theme: an outline, and round corners where the desktop composes its
/// windows. Main thread only.
class DashboardWindow : public PopoverWindow {
public:
    using PopoverWindow::PopoverWindow;

protected:
    void paintEvent(QPaintEvent* event) override;
    void applyStyle() override;
    [[nodiscard]] QSize sizeForContent() const override;
};

} // namespace kestrin
