#pragma once

#include "content/Command.h"
#include "monitoring/AppModel.h"

#include <vector>

namespace kestrin {

/// Whether this program has settings that can be opened.
enum class SettingsAccess { available, notAvailable };

/// One of each command, in the order of `CommandID`, for the buttons of the dashboard and every menu. What can be
/// checked depends on the page that shows. A command that is disabled says what the user can do about it.
[[nodiscard]] std::vector<Command> dashboardCommands(const AppModel& model, SettingsAccess settings);

} // namespace kestrin
