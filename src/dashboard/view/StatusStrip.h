#pragma once

#include "dashboard/ServicesPageContent.h"
#include "dashboard/view/BarStrip.h"

#include <vector>

namespace kestrin {

/// The last reports of a status service in fixed slots, the newest at the end. Every report but an operational one
/// has a tick below its block.
class StatusStrip : public BarStrip {
public:
    explicit StatusStrip(QWidget* parent = nullptr);
    void show(const std::vector<StatusBlock>& blocks, const std::string& accessibleLabel);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void applyTheme(const Theme& theme) override;
    [[nodiscard]] int barCount() const override { return static_cast<int>(blocks_.size()); }
    [[nodiscard]] QRectF slotOf(int bar) const override;
    [[nodiscard]] const std::string& detailsOf(int bar) const override;
    void paintBars(QPainter& painter) const override;

private:
    std::vector<StatusBlock> blocks_;
};

} // namespace kestrin
