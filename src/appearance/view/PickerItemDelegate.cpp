#include "appearance/view/PickerItemDelegate.h"

#include "appearance/view/Shapes.h"
#include "appearance/view/Symbols.h"
#include "appearance/view/Theme.h"

#include <QComboBox>
#include <QIcon>
#include <QPainter>
#include <algorithm>

namespace kestrin {

PickerItemDelegate::PickerItemDelegate(QComboBox* picker) : QStyledItemDelegate(picker), picker_(picker) {}

void PickerItemDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    if (index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator"))
        return QStyledItemDelegate::paint(painter, option, index);
    const Theme& theme = currentTheme();
    const bool enabled = option.state & QStyle::State_Enabled;
    const auto visual = [&](const QRect& rect) { return QStyle::visualRect(option.direction, option.rect, rect); };
    const int margin = theme.length(3);
    const QRect row = option.rect.adjusted(margin, 0, -margin, 0);
    const bool selected = enabled && option.state & QStyle::State_Selected;
    if (selected) {
        fillRounded(*painter, row, theme.length(5), theme.color(ColorRole::fillHover));
        if (theme.isHighContrast())
            outlineRounded(*painter, row, theme.length(5), 2, theme.color(ColorRole::accent));
    }

    const QColor color = theme.color(enabled ? ColorRole::text : ColorRole::disabled);
    const int size = theme.length(14);
    const QRect mark(row.left() + theme.length(7), row.top() + (row.height() - size) / 2, size, size);
    if (index.row() == picker_->currentIndex())
        paintSymbol(
            *painter, visual(mark), QStringLiteral("checkmark"), selected ? color : theme.color(ColorRole::accent));
    QRect place(mark.right() + 1 + theme.length(7), row.top(),
        row.right() - theme.length(8) - mark.right() - theme.length(7), row.height());
    const auto decoration = index.data(Qt::DecorationRole).value<QIcon>();
    if (!decoration.isNull()) {
        const int side = option.decorationSize.height();
        decoration.paint(painter, visual(QRect(place.left(), row.top() + (row.height() - side) / 2, side, side)));
        place.setLeft(place.left() + side + theme.length(7));
    }
    const QString text = index.data().toString();
    painter->save();
    painter->setLayoutDirection(Qt::LayoutDirectionAuto);
    painter->setFont(option.font);
    painter->setPen(color);
    painter->drawText(visual(place),
        static_cast<int>(QStyle::visualAlignment(option.direction, Qt::AlignLeading | Qt::AlignVCenter)) |
            Qt::TextSingleLine,
        option.fontMetrics.elidedText(text, Qt::ElideRight, place.width()));
    painter->restore();
}

QSize PickerItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator")) return size;
    const Theme& theme = currentTheme();
    size.setHeight(std::max(option.fontMetrics.height(), theme.length(30)));
    return size;
}

} // namespace kestrin
