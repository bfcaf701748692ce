#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"
#include "json/JSONReader.h"
#include "json/JSONValue.h"

#include <optional>
#include <string_view>

namespace kestrin {

/// A history line read by the strict reader of the state files, which shares nothing with the decoder of history
/// lines but the names of states and failures: slow, and a second opinion on it.
class StrictHistoryLine {
public:
    explicit StrictHistoryLine(std::string_view line);

    /// The strict reader refused the line for a reason that is its own: a key that stands twice, deep nesting, a
    /// number that fits no double.
    [[nodiscard]] bool isRefusedForItsOwnReasons() const { return refusedForItsOwnReasons_; }
    /// Somewhere in the line a number stands that fits no 64-bit integer: no history line has one.
    [[nodiscard]] bool holdsAHugeNumber() const { return holdsAHugeNumber_; }

    [[nodiscard]] std::optional<CheckRecord> check() const;
    [[nodiscard]] std::optional<ProviderCheckRecord> providerCheck() const;

private:
    template <class Record>
    [[nodiscard]] std::optional<Record> record(
        const char* keyOfTheKind, Record (*recordIn)(const JSONReader&)) const;

    std::optional<JSONValue> value_;
    bool refusedForItsOwnReasons_ = false;
    bool holdsAHugeNumber_ = false;
};

} // namespace kestrin
