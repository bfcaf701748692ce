#pragma once

#include "dashboard/DashboardContent.h"

namespace kestrin {

/// Returns the command with this id. Every content has exactly one; throws `std::logic_error` if it is missing.
[[nodiscard]] const Command& command(const DashboardContent& content, CommandID id);

} // namespace kestrin
