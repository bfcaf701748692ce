#pragma once

#include <QFocusFrame>

namespace kestrin {

/// A bool on a widget that takes the focus: whether it gets the ring. A button that covers a whole row or window
/// edge may rather draw its focus itself.
inline constexpr auto focusRingProperty = "kestrinFocusRing";

/// The ring around the control that has the focus, with a gap between both. It lies over the control's
/// surroundings, so a layout needs to leave no room for it; at the edge of a window it moves inwards.
class FocusRing : public QFocusFrame {
    Q_OBJECT

public:
    explicit FocusRing(QWidget* parent = nullptr);

    /// From the control's edge to the ring's outer edge, in logical pixels.
    [[nodiscard]] static int reach(const QWidget* control);
    /// Buttons, pickers and what asks for it; fields and lists show their focus
    /// themselves.
    [[nodiscard]] static bool suits(const QWidget* control);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace kestrin
