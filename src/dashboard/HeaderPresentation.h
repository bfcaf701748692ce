#pragma once

#include "dashboard/DashboardContent.h"
#include "monitoring/AppModel.h"

#include <optional>

namespace kestrin {

/// Whether the services page is what the dashboard shows: the page chosen counts only while services are on.
[[nodiscard]] bool showsServicesPage(const AppModel& model);

/// Title and state of the monitor, with a picker where there are websites to choose from.
[[nodiscard]] HeaderContent dashboardHeader(const AppModel& model);

/// Absent while services are off.
[[nodiscard]] std::optional<PageSwitchContent> pageSwitch(const AppModel& model);

} // namespace kestrin
