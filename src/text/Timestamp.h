#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// The moment as ISO 8601 in UTC at second precision, "2026-01-31T09:05:00Z". Years 0 to 9999.
[[nodiscard]] std::string timestampText(std::chrono::sys_seconds moment);

/// Reads year-month-day "T" hour:minute:second and an offset, which is "Z" or a sign and four digits without a
/// colon. A fraction, blanks, or a day that the calendar does not have gives no value; nothing is ever thrown.
[[nodiscard]] std::optional<std::chrono::sys_seconds> parseTimestamp(std::string_view text);

} // namespace kestrin
