#pragma once

#include "content/Command.h"

class QAbstractButton;
class QString;

namespace kestrin {

/// Shows a command on a button, under its own label or another one. A disabled one says why in its tool tip.
void showCommand(QAbstractButton* button, const Command& command);
void showCommand(QAbstractButton* button, const Command& command, const QString& label);

} // namespace kestrin
