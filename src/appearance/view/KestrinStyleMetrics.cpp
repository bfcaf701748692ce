#include "appearance/view/FocusRing.h"
#include "appearance/view/KestrinStyle.h"
#include "appearance/view/KeyboardFocus.h"
#include "appearance/view/PickerItemDelegate.h"
#include "appearance/view/ScrollBarDrawing.h"
#include "appearance/view/SwitchKnob.h"
#include "appearance/view/Theme.h"
#include "appearance/view/ThemePalette.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyleOption>

namespace kestrin {

void KestrinStyle::polish(QApplication* application) {
    QProxyStyle::polish(application);
    new KeyboardFocus(this);
}

void KestrinStyle::unpolish(QApplication* application) {
    delete findChild<KeyboardFocus*>(QString(), Qt::FindDirectChildrenOnly);
    QProxyStyle::unpolish(application);
}

void KestrinStyle::polish(QPalette& palette) {
    palette = paletteOf(currentTheme());
}

void KestrinStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (qobject_cast<QLineEdit*>(widget)) widget->setAttribute(Qt::WA_Hover);
    // It lies over what it scrolls.
    if (qobject_cast<QScrollBar*>(widget)) widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
    if (auto* box = qobject_cast<QCheckBox*>(widget); box && !SwitchKnob::of(box)) new SwitchKnob(box);
    auto* picker = qobject_cast<QComboBox*>(widget);
    // Qt's own delegate draws without the style.
    if (picker && picker->itemDelegate()->inherits("QComboBoxDelegate"))
        picker->setItemDelegate(new PickerItemDelegate(picker));
}

void KestrinStyle::unpolish(QWidget* widget) {
    if (qobject_cast<QLineEdit*>(widget)) widget->setAttribute(Qt::WA_Hover, false);
    if (qobject_cast<QScrollBar*>(widget)) widget->setAttribute(Qt::WA_OpaquePaintEvent);
    delete SwitchKnob::of(widget);
    QProxyStyle::unpolish(widget);
}

int KestrinStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    const Theme& theme = currentTheme();
    switch (metric) {
    case PM_IndicatorWidth:
        return theme.length(36);
    case PM_IndicatorHeight:
        return theme.length(20);
    case PM_CheckBoxLabelSpacing:
        return theme.length(10);
    case PM_ScrollBarExtent:
    case PM_ScrollView_ScrollBarOverlap:
        return scrollBarExtent();
    case PM_ScrollBarSliderMin:
        return shortestThumb();
    case PM_FocusFrameHMargin:
    case PM_FocusFrameVMargin: {
        const auto* ring = qobject_cast<const QFocusFrame*>(
            widget ? widget : qobject_cast<QWidget*>(option ? option->styleObject : nullptr));
        return FocusRing::reach(ring ? ring->widget() : nullptr);
    }
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    case PM_DefaultFrameWidth:
        if (widget && widget->inherits("QComboBoxPrivateContainer")) return theme.length(4);
        return QProxyStyle::pixelMetric(metric, option, widget);
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return theme.length(4);
    case PM_ToolTipLabelFrameWidth:
        return theme.length(6);
    case PM_ButtonIconSize:
    case PM_SmallIconSize:
        return theme.length(16);
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int KestrinStyle::styleHint(
    StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* answer) const {
    switch (hint) {
    case SH_ComboBox_Popup:
        return false;
    case SH_ComboBox_ListMouseTracking:
        return true;
    case SH_ComboBox_PopupFrameStyle:
        return QFrame::StyledPanel | QFrame::Plain;
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return false;
    case SH_EtchDisabledText:
        return false;
    case SH_FocusFrame_AboveWidget:
        return true;
    case SH_FocusFrame_Mask:
        return false;
    case SH_ScrollBar_Transient:
        return false;
    case SH_ToolTipLabel_Opacity:
        return 255;
    case SH_Widget_Animation_Duration:
        if (currentTheme().reducedMotion()) return 0;
        break;
    default:
        break;
    }
    return QProxyStyle::styleHint(hint, option, widget, answer);
}

} // namespace kestrin
