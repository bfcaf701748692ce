#pragma once

#include "dashboard/DashboardContent.h"

namespace kestrin {

/// The command with this id, of which there is one.
[[nodiscard]] const Command& command(const DashboardContent& content, CommandID id);

} // namespace kestrin
