#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// One finished website check: a line of the website's history file.
/// `timestamp` is ISO 8601 in UTC at second precision, ending in "Z", and marks the end of the check.
struct CheckRecord {
    std::string timestamp;
    std::string siteID;
    std::string url;
    bool dnsOK = false;
    std::vector<std::string> ips;           ///< numeric addresses, sorted, no duplicates
    std::optional<std::int64_t> httpStatus; ///< absent when no response came
    std::optional<std::int64_t> elapsedMS;  ///< absent only in lines of early versions
    bool up = false;
    std::optional<std::string> error; ///< what the user reads of a failed check

    bool operator==(const CheckRecord&) const = default;
};

} // namespace kestrin
