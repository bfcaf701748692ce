#pragma once

#include "appearance/view/ColorRole.h"
#include "appearance/view/TextStyle.h"
#include "content/StateColor.h"

#include <QLabel>
#include <variant>

namespace kestrin {

/// One line of plain text in a style and a colour of the theme, which it follows. Its alignment follows the
/// layout's direction, and the order of its words their own.
class ThemedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ThemedLabel(
        TextStyle style = TextStyle::body, ColorRole color = ColorRole::text, QWidget* parent = nullptr);

    void setTextStyle(TextStyle style);
    void setColor(ColorRole color);
    /// The state's colour for words.
    void setColor(StateColor color);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void followTheme();

    TextStyle style_;
    std::variant<ColorRole, StateColor> color_;
};

} // namespace kestrin
