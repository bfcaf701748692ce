#pragma once

#include "model/CheckRecord.h"
#include "text/LocaleFormats.h"

#include <string>

namespace kestrin {

/// What the dashboard says of one check of a website, wherever it shows that check.

/// "HTTP 204", or else the error, or else "No response".
[[nodiscard]] std::string resultText(const CheckRecord& check);
/// The time alone, or the stored text where that is no time stamp.
[[nodiscard]] std::string timeText(const std::string& timestamp, const LocaleFormats& formats);
[[nodiscard]] std::string dateAndTimeText(const std::string& timestamp, const LocaleFormats& formats);
/// "Up, HTTP 204, 9:05 AM, 204ms": one item for those who hear the dashboard.
[[nodiscard]] std::string accessibleText(const CheckRecord& check, const LocaleFormats& formats);
/// Moment, result, duration and addresses, a line each; a line that the record has nothing for is left out.
[[nodiscard]] std::string detailsText(const CheckRecord& check, const LocaleFormats& formats);

} // namespace kestrin
