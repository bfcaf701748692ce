#pragma once

#include "dashboard/DashboardCommands.h"
#include "dashboard/DashboardContent.h"
#include "dashboard/UpdateObservation.h"
#include "monitoring/AppModel.h"
#include "text/LocaleFormats.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrin {

/// Everything that the dashboard says of the model at this moment. `update` is null without an update controller.
/// `notices` stays empty: what the start of the program had to say is its own. Main thread.
[[nodiscard]] DashboardContent dashboardContent(
    const AppModel& model, const UpdateObservation* update, SettingsAccess settings, const LocaleFormats& formats);

/// A message of the start of the program as one of the `notices`.
[[nodiscard]] NoteContent launchNotice(std::string_view message);

/// "5 minutes", with any remaining seconds dropped, and "1 minute" below two.
[[nodiscard]] std::string intervalText(std::int64_t seconds, const LocaleFormats& formats);

} // namespace kestrin
