#pragma once

#include <QWidget>

namespace kestrin {

/// A rounded surface with a hairline around it. It has no layout of its own; 14 x 10 is its usual padding.
class Card : public QWidget {
    Q_OBJECT

public:
    explicit Card(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace kestrin
