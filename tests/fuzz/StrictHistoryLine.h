#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"

#include <optional>
#include <string_view>

namespace kestrin {

/// A history line read by the strict reader of the state files, which shares nothing with the decoder of history
/// lines: slow, and a second opinion.
template <class Record> struct StrictHistoryLine {
    std::optional<Record> record;
    /// The strict reader refused the line for a reason that is its own: a key that stands twice, deep nesting, a
    /// number that fits no double.
    bool refusedForItsOwnReasons = false;
    /// A number stands in the line that fits no 64-bit integer, wherever it is: no history line has one.
    bool holdsAHugeNumber = false;
};

[[nodiscard]] StrictHistoryLine<CheckRecord> strictCheck(std::string_view line);
[[nodiscard]] StrictHistoryLine<ProviderCheckRecord> strictProviderCheck(std::string_view line);

} // namespace kestrin
