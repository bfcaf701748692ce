#pragma once

namespace kestrin {

/// What caused a cycle, compared by order: everything below `manual` is automatic and counts for notifications.
enum class CheckTrigger { start, scheduled, restart, manual };

[[nodiscard]] constexpr bool isAutomatic(CheckTrigger trigger) {
    return trigger < CheckTrigger::manual;
}

} // namespace kestrin
