#pragma once

#include "dashboard/DashboardContent.h"

namespace kestrin {

/// Content values with every part filled in, for tests of what draws them.
[[nodiscard]] DashboardContent websiteContent();
[[nodiscard]] DashboardContent servicesContent(std::size_t count);
[[nodiscard]] DashboardContent panelContent();
[[nodiscard]] Command& commandOf(DashboardContent& content, CommandID id);

} // namespace kestrin
