#pragma once

#include <QWidget>

namespace kestrin {

/// A hairline between rows or columns.
class Divider : public QWidget {
    Q_OBJECT

public:
    /// The inset is kept free at the leading end (of a horizontal one), for scale 1.
    explicit Divider(Qt::Orientation orientation = Qt::Horizontal, double inset = 0, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Qt::Orientation orientation_;
    double inset_;
};

} // namespace kestrin
