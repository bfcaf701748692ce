#pragma once

#include "dashboard/view/ThemedWidget.h"

#include <QRectF>
#include <functional>

namespace kestrin {

/// A row of painted bars that is one item for screen readers. Arrow keys, Home and End move through the bars; the
/// current one is the item's description, pointing at one shows its details. Time runs in the direction of text.
class BarStrip : public ThemedWidget {
public:
    explicit BarStrip(QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    /// After the bars have changed: the current one stays if it still exists.
    void barsChanged(const std::string& accessibleLabel);

    [[nodiscard]] virtual int barCount() const = 0;
    /// The slot of a bar in left-to-right coordinates, over the whole height.
    [[nodiscard]] virtual QRectF slotOf(int bar) const = 0;
    [[nodiscard]] virtual const std::string& detailsOf(int bar) const = 0;
    /// Paints in left-to-right coordinates.
    virtual void paintBars(QPainter& painter) const = 0;

private:
    void moveTo(int bar);
    void describeCurrent();
    [[nodiscard]] int barAt(double x) const;

    int current_ = -1;
};

} // namespace kestrin
