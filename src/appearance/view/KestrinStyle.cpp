#include "appearance/view/KestrinStyle.h"

#include "appearance/view/ButtonDrawing.h"
#include "appearance/view/FieldDrawing.h"
#include "appearance/view/FocusRing.h"
#include "appearance/view/ItemDrawing.h"
#include "appearance/view/PickerDrawing.h"
#include "appearance/view/ScrollBarDrawing.h"
#include "appearance/view/SwitchDrawing.h"
#include "appearance/view/Theme.h"

#include <QComboBox>
#include <QFrame>
#include <QToolButton>

namespace kestrin {

namespace {

template <typename Option> const Option* as(const QStyleOption* option) {
    return qstyleoption_cast<const Option*>(option);
}

bool isPickerList(const QWidget* widget) {
    return widget && widget->inherits("QComboBoxPrivateContainer");
}

/// A tool button as the button that it looks like; its arrow and menu parts are not used here.
QStyleOptionButton asButton(const QStyleOptionToolButton& tool) {
    QStyleOptionButton option;
    static_cast<QStyleOption&>(option) = tool;
    option.type = QStyleOptionButton::Type;
    option.version = QStyleOptionButton::Version;
    if (tool.toolButtonStyle != Qt::ToolButtonTextOnly) option.icon = tool.icon;
    if (tool.toolButtonStyle != Qt::ToolButtonIconOnly) option.text = tool.text;
    option.iconSize = tool.iconSize;
    return option;
}

} // namespace

KestrinStyle::KestrinStyle() : QProxyStyle(QStringLiteral("Fusion")) {
    setObjectName(QStringLiteral("kestrin"));
}

void KestrinStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const {
    switch (element) {
    case PE_IndicatorCheckBox:
        return drawSwitch(*option, *painter, widget);
    case PE_PanelLineEdit:
        if (const auto* frame = as<QStyleOptionFrame>(option); frame && frame->lineWidth > 0)
            return drawField(*option, *painter);
        return;
    case PE_FrameLineEdit:
        return;
    case PE_PanelItemViewRow:
        return;
    case PE_PanelItemViewItem:
        return drawItemPanel(*option, *painter);
    case PE_FrameFocusRect:
        if (!widget || !FocusRing::suits(widget)) drawInnerFocus(*option, *painter);
        return;
    case PE_PanelTipLabel:
    case PE_PanelMenu:
        return drawPopupPanel(*option, *painter);
    case PE_FrameMenu:
        return;
    case PE_Frame:
        if (isPickerList(widget)) return drawPopupPanel(*option, *painter);
        break;
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void KestrinStyle::drawControl(
    ControlElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const {
    switch (element) {
    case CE_PushButton:
        if (const auto* button = as<QStyleOptionButton>(option)) return drawButton(*button, *painter, widget);
        break;
    case CE_ComboBoxLabel:
        if (const auto* picker = as<QStyleOptionComboBox>(option); picker && !picker->editable)
            return drawPickerText(*picker, *painter, widget);
        break;
    case CE_ShapedFrame:
        if (isPickerList(widget)) return drawPopupPanel(*option, *painter);
        break;
    case CE_ItemViewItem:
        if (const auto* item = as<QStyleOptionViewItem>(option)) {
            // On the pale tint of a selection the text keeps its colour.
            QStyleOptionViewItem copy = *item;
            copy.palette.setBrush(QPalette::HighlightedText, copy.palette.brush(QPalette::Text));
            return QProxyStyle::drawControl(element, &copy, painter, widget);
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void KestrinStyle::drawComplexControl(
    ComplexControl control, const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const {
    switch (control) {
    case CC_ComboBox:
        if (const auto* picker = as<QStyleOptionComboBox>(option); picker && !picker->editable)
            return drawPicker(*picker, *painter, widget);
        break;
    case CC_ScrollBar:
        if (const auto* bar = as<QStyleOptionSlider>(option)) return drawScrollBar(*bar, *painter);
        break;
    case CC_ToolButton:
        // Those inside a field belong to it.
        if (const auto* tool = as<QStyleOptionToolButton>(option); tool && !widget->inherits("QLineEditIconButton"))
            return drawButton(asButton(*tool), *painter, widget);
        break;
    default:
        break;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect KestrinStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
    if (element == SE_LineEditContents)
        if (const auto* frame = as<QStyleOptionFrame>(option); frame && frame->lineWidth > 0)
            return visualRect(option->direction, option->rect, fieldTextRect(option->rect));
    return QProxyStyle::subElementRect(element, option, widget);
}

QRect KestrinStyle::subControlRect(
    ComplexControl control, const QStyleOptionComplex* option, SubControl subControl, const QWidget* widget) const {
    if (const auto* bar = as<QStyleOptionSlider>(option); bar && control == CC_ScrollBar)
        return scrollBarPart(*bar, subControl);
    if (const auto* picker = as<QStyleOptionComboBox>(option);
        picker && control == CC_ComboBox && !picker->editable) {
        if (subControl == SC_ComboBoxEditField) return pickerTextRect(*picker);
        if (subControl == SC_ComboBoxListBoxPopup) return pickerListRect(*picker, widget);
    }
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

QSize KestrinStyle::sizeFromContents(
    ContentsType type, const QStyleOption* option, const QSize& size, const QWidget* widget) const {
    if (const auto* button = as<QStyleOptionButton>(option); button && type == CT_PushButton)
        return buttonSize(*button, widget);
    if (const auto* tool = as<QStyleOptionToolButton>(option); tool && type == CT_ToolButton)
        return buttonSize(asButton(*tool), widget);
    if (const auto* picker = as<QStyleOptionComboBox>(option); picker && type == CT_ComboBox && !picker->editable)
        return pickerSize(size);
    if (const auto* box = as<QStyleOptionButton>(option); box && type == CT_CheckBox && box->text.isEmpty())
        return QSize(
            pixelMetric(PM_IndicatorWidth, option, widget), pixelMetric(PM_IndicatorHeight, option, widget));
    if (const auto* frame = as<QStyleOptionFrame>(option); frame && type == CT_LineEdit && frame->lineWidth > 0)
        return fieldSize(size);
    const QSize ordinary = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_ItemViewItem) return ordinary.expandedTo(QSize(0, currentTheme().length(30)));
    return ordinary;
}

} // namespace kestrin
