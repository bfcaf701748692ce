#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"

#include <string>

namespace kestrin {

/// A record as a line of its history file, without the line feed; absent optionals are left out.
[[nodiscard]] std::string historyLine(const CheckRecord& record);
[[nodiscard]] std::string historyLine(const ProviderCheckRecord& record);

} // namespace kestrin
