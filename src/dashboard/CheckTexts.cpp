#include "dashboard/CheckTexts.h"

#include "dashboard/ForeignText.h"
#include "text/Timestamp.h"

#include <cstddef>

namespace kestrin {

namespace {

// A name has a handful of addresses. A file may claim a million of them.
constexpr std::size_t mostAddresses = 8;

std::string addressesText(const std::vector<std::string>& addresses) {
    std::string text;
    for (std::size_t index = 0; index < addresses.size(); ++index) {
        if (index > 0) text += ", ";
        if (index == mostAddresses) return text + "…";
        text += shownAddress(addresses[index]);
    }
    return text;
}

} // namespace

std::string resultText(const CheckRecord& check) {
    if (check.httpStatus) return "HTTP " + std::to_string(*check.httpStatus);
    return check.error ? shownError(*check.error) : "No response";
}

std::string timeText(const std::string& timestamp, const LocaleFormats& formats) {
    const auto when = parseTimestamp(timestamp);
    return when ? formats.time(*when) : shownTimestamp(timestamp);
}

std::string dateAndTimeText(const std::string& timestamp, const LocaleFormats& formats) {
    const auto when = parseTimestamp(timestamp);
    return when ? formats.dateAndTime(*when) : shownTimestamp(timestamp);
}

// Nothing is isolated here: these words are spoken, and nobody sees them in a direction.
std::string accessibleText(const CheckRecord& check, const LocaleFormats& formats) {
    std::string text = check.up ? "Up, " : "Down, ";
    text += resultText(check) + ", " + timeText(check.timestamp, formats);
    if (check.elapsedMS) text += ", " + formats.duration(*check.elapsedMS);
    return text;
}

std::string detailsText(const CheckRecord& check, const LocaleFormats& formats) {
    std::string text = dateAndTimeText(check.timestamp, formats) + "\n" + resultText(check);
    if (check.elapsedMS) text += "\n" + formats.duration(*check.elapsedMS);
    if (!check.ips.empty()) text += "\n" + addressesText(check.ips);
    return text;
}

} // namespace kestrin
