#include "appearance/view/SwitchKnob.h"

#include "appearance/view/Theme.h"

namespace kestrin {

namespace {

constexpr int travelMS = 120;

} // namespace

SwitchKnob::SwitchKnob(QCheckBox* box) : QObject(box), box_(box) {
    animation_.setDuration(travelMS);
    animation_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&animation_, &QVariantAnimation::valueChanged, box, qOverload<>(&QWidget::update));
    connect(box, &QCheckBox::toggled, this, &SwitchKnob::moveTo);
}

double SwitchKnob::position() const {
    if (animation_.state() == QAbstractAnimation::Running) return animation_.currentValue().toDouble();
    return box_->isChecked() ? 1 : 0;
}

SwitchKnob* SwitchKnob::of(const QWidget* widget) {
    return widget ? widget->findChild<SwitchKnob*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

void SwitchKnob::moveTo(bool on) {
    const double from =
        animation_.state() == QAbstractAnimation::Running ? animation_.currentValue().toDouble() : !on;
    animation_.stop();
    if (currentTheme().reducedMotion() || !box_->isVisible()) return;
    animation_.setStartValue(from);
    animation_.setEndValue(on ? 1.0 : 0.0);
    animation_.start();
}

} // namespace kestrin
