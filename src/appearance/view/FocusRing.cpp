#include "appearance/view/FocusRing.h"

#include "appearance/view/ButtonLook.h"
#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QPainter>
#include <QStyleOptionButton>
#include <QVariant>

namespace kestrin {

namespace {

/// The part of the control that the ring goes around, in the control's coordinates.
QRect ringed(const QWidget* control) {
    if (!qobject_cast<const QCheckBox*>(control)) return control->rect();
    QStyleOptionButton option;
    option.initFrom(control);
    return control->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, control);
}

double cornerOf(const QWidget* control) {
    const Theme& theme = currentTheme();
    if (qobject_cast<const QCheckBox*>(control)) return theme.length(10);
    if (qobject_cast<const QAbstractButton*>(control))
        return ButtonLook::of(buttonKind(control), {}, control).radius;
    return theme.length(qobject_cast<const QComboBox*>(control) ? 7 : 3);
}

} // namespace

FocusRing::FocusRing(QWidget* parent) : QFocusFrame(parent) {}

int FocusRing::reach(const QWidget* control) {
    const Theme& theme = currentTheme();
    // The well keeps only 3 free around its segments.
    const bool inWell = control && buttonKind(control) == ButtonKind::segment;
    return theme.ringWidth() + theme.length(inWell ? 1 : 2);
}

bool FocusRing::suits(const QWidget* control) {
    if (control->isWindow()) return false;
    if (const QVariant chosen = control->property(focusRingProperty); chosen.isValid()) return chosen.toBool();
    if (const auto* picker = qobject_cast<const QComboBox*>(control)) return !picker->isEditable();
    return qobject_cast<const QAbstractButton*>(control);
}

void FocusRing::paintEvent(QPaintEvent*) {
    const QWidget* control = widget();
    if (!control || !parentWidget()) return;
    const Theme& theme = currentTheme();
    const int reach = FocusRing::reach(control);
    QRect ring =
        ringed(control).translated(control->mapTo(parentWidget(), QPoint())).adjusted(-reach, -reach, reach, reach);
    ring = ring.intersected(parentWidget()->rect()).translated(-pos());
    QPainter painter(this);
    outlineRounded(painter, ring, cornerOf(control) + reach, theme.ringWidth(), theme.color(ColorRole::accent));
}

} // namespace kestrin
