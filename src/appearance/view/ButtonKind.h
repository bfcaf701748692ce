#pragma once

#include <QString>

class QAbstractButton;
class QWidget;

namespace kestrin {

/// How the style draws a button. The default is plain for a QPushButton and flat for a QToolButton.
enum class ButtonKind {
    plain,
    accent, ///< at most one in each view
    flat,   ///< filled only under the pointer
    segment,
    link, ///< its symbol follows the text
    picker,
    destructive ///< the action of a dialog that removes something
};

void setButtonKind(QAbstractButton* button, ButtonKind kind);
[[nodiscard]] ButtonKind buttonKind(const QWidget* button);

/// The symbol beside the button's text, in the text's colour; alone on a button without a text, which then needs an
/// accessible name. An empty name removes it.
void setButtonSymbol(QAbstractButton* button, const QString& name);
[[nodiscard]] QString buttonSymbol(const QWidget* button);

} // namespace kestrin
