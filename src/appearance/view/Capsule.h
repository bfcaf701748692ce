#pragma once

#include "appearance/view/ThemedLabel.h"

namespace kestrin {

/// A state's word in its colour on a tint of it, with round ends. Only for cards: on the window's grey the words
/// would be too faint.
class Capsule : public ThemedLabel {
    Q_OBJECT

public:
    explicit Capsule(TextStyle style = TextStyle::caption2Bold, QWidget* parent = nullptr);

    void setState(StateColor state);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    StateColor state_ = StateColor::secondary;
};

} // namespace kestrin
