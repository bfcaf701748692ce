#include "appearance/view/PickerDrawing.h"

#include "appearance/view/ButtonLook.h"
#include "appearance/view/Shapes.h"
#include "appearance/view/Symbols.h"
#include "appearance/view/Theme.h"

#include <QComboBox>
#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace kestrin {

namespace {

constexpr double padding = 11;
constexpr double gap = 6;
constexpr double chevron = 11;
constexpr double chevronMargin = 9;
constexpr double widestList = 360;

QStyle::State stateOf(const QStyleOptionComboBox& option) {
    // While its list is open the picker stays pressed.
    const bool open = option.state & QStyle::State_On;
    return open ? option.state | QStyle::State_Sunken : option.state;
}

} // namespace

void drawPicker(const QStyleOptionComboBox& option, QPainter& painter, const QWidget* widget) {
    const Theme& theme = currentTheme();
    const ButtonLook look = ButtonLook::of(ButtonKind::picker, stateOf(option), widget);
    fillRounded(painter, option.rect, look.radius, look.fill);
    if (look.outline.isValid())
        outlineRounded(
            painter, option.rect, look.radius, hairlineWidth(painter.device()->devicePixelRatio()), look.outline);
    const int size = theme.length(chevron);
    const QRect place(option.rect.right() + 1 - theme.length(chevronMargin) - size,
        option.rect.top() + (option.rect.height() - size) / 2, size, size);
    const bool enabled = option.state & QStyle::State_Enabled;
    paintSymbol(painter, QStyle::visualRect(option.direction, option.rect, place), QStringLiteral("chevron.down"),
        theme.color(enabled ? ColorRole::secondary : ColorRole::disabled));
}

void drawPickerText(const QStyleOptionComboBox& option, QPainter& painter, const QWidget* widget) {
    const ButtonLook look = ButtonLook::of(ButtonKind::picker, stateOf(option), widget);
    const QRect place = pickerTextRect(option);
    painter.save();
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.setFont(look.font);
    painter.setPen(look.content);
    painter.drawText(place,
        static_cast<int>(QStyle::visualAlignment(option.direction, Qt::AlignLeading | Qt::AlignVCenter)) |
            Qt::TextSingleLine,
        QFontMetrics(look.font).elidedText(option.currentText, Qt::ElideRight, place.width()));
    painter.restore();
}

QSize pickerSize(const QSize& contents) {
    const Theme& theme = currentTheme();
    return QSize(contents.width() + theme.length(padding) + theme.length(gap) + theme.length(chevron) +
                     theme.length(chevronMargin),
        std::max(contents.height(), theme.length(32)));
}

QRect pickerTextRect(const QStyleOptionComboBox& option) {
    const Theme& theme = currentTheme();
    const QRect place = option.rect.adjusted(
        theme.length(padding), 0, -theme.length(gap) - theme.length(chevron) - theme.length(chevronMargin), 0);
    return QStyle::visualRect(option.direction, option.rect, place);
}

QRect pickerListRect(const QStyleOptionComboBox& option, const QWidget* widget) {
    const auto* picker = qobject_cast<const QComboBox*>(widget);
    if (!picker) return option.rect;
    const Theme& theme = currentTheme();
    int width = 0;
    for (int i = 0; i < picker->count(); ++i)
        width = std::max(width, QFontMetrics(picker->font()).horizontalAdvance(picker->itemText(i)));
    // Room for the check mark and both margins of an entry, as PickerItemDelegate draws it, and the scroll bar.
    width = std::min(width + theme.length(60), theme.length(widestList));
    QRect list = option.rect;
    list.setWidth(std::max(width, list.width()));
    return QStyle::visualRect(option.direction, option.rect, list);
}

} // namespace kestrin
