#pragma once

#include <QStyledItemDelegate>

class QComboBox;

namespace kestrin {

/// The entries of a picker's list; a check mark shows the current one. A child of its picker.
class PickerItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit PickerItemDelegate(QComboBox* picker);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    QComboBox* picker_;
};

} // namespace kestrin
