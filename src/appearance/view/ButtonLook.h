#pragma once

#include "appearance/view/ButtonKind.h"

#include <QColor>
#include <QFont>
#include <QStyle>

namespace kestrin {

/// How a button of a kind looks in a state.
struct ButtonLook {
    QColor fill = {};    ///< invalid: none
    QColor outline = {}; ///< invalid: none
    QColor content = {}; ///< of text and symbol
    QFont font = {};
    int radius = 0;
    int padding = 0; ///< at both ends
    int height = 0;  ///< at least
    int symbolSize = 0;
    int gap = 0; ///< between symbol and text

    [[nodiscard]] static ButtonLook of(ButtonKind kind, QStyle::State state, const QWidget* widget);
};

} // namespace kestrin
