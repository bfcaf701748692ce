#include "dashboard/view/CommandButton.h"

#include "dashboard/view/DetailsTip.h"

#include <QAbstractButton>

namespace kestrin {

void showCommand(QAbstractButton* button, const Command& command) {
    showCommand(button, command, text(command.label));
}

void showCommand(QAbstractButton* button, const Command& command, const QString& label) {
    button->setText(label);
    button->setAccessibleName(label);
    button->setAccessibleDescription(text(command.reason));
    button->setToolTip(plainToolTip(text(command.reason)));
    button->setEnabled(command.enabled);
}

} // namespace kestrin
