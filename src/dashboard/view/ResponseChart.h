#pragma once

#include "dashboard/ResponseChartContent.h"
#include "dashboard/view/BarStrip.h"

namespace kestrin {

/// The bars of the last checks. A failure has a tick below its bar as well, so that it does not differ by colour
/// alone.
class ResponseChart : public BarStrip {
public:
    explicit ResponseChart(QWidget* parent = nullptr);
    void show(const ResponseChartContent& content);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void applyTheme(const Theme& theme) override;
    [[nodiscard]] int barCount() const override { return static_cast<int>(content_.bars.size()); }
    [[nodiscard]] QRectF slotOf(int bar) const override;
    [[nodiscard]] const std::string& detailsOf(int bar) const override;
    void paintBars(QPainter& painter) const override;

private:
    ResponseChartContent content_;
};

} // namespace kestrin
