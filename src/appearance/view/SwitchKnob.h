#pragma once

#include <QCheckBox>
#include <QVariantAnimation>

namespace kestrin {

/// Moves the knob of one switch when the user turns it: 120 ms, or at once with reduced motion or while the switch
/// is not visible. A child of its switch.
class SwitchKnob : public QObject {
    Q_OBJECT

public:
    explicit SwitchKnob(QCheckBox* box);

    /// 0 is off, 1 is on.
    [[nodiscard]] double position() const;
    /// The knob of a switch, null if it has none.
    [[nodiscard]] static SwitchKnob* of(const QWidget* widget);

private:
    void moveTo(bool on);

    QCheckBox* box_;
    QVariantAnimation animation_;
};

} // namespace kestrin
