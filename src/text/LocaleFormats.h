#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kestrin {

/// Writes times and figures the way the user's locale does: times by LC_TIME, numbers by LC_NUMERIC. A plain value
/// of names; any thread.
class LocaleFormats {
public:
    /// Names as POSIX gives them, "de_DE.UTF-8" for instance; `timeZone` is an Olson name, or empty for the
    /// machine's.
    LocaleFormats(std::string timeLocale, std::string numberLocale, std::string timeZone = {});
    [[nodiscard]] static LocaleFormats fromEnvironment();

    /// The time of day alone, short: "9:05 AM", "09:05".
    [[nodiscard]] std::string time(std::chrono::sys_seconds when) const;
    /// Below a second in whole milliseconds, from there in seconds with one digit: "999ms", "1.0s", "1,2 Sek.".
    [[nodiscard]] std::string duration(std::int64_t milliseconds) const;

private:
    std::string timeLocale_;
    std::string numberLocale_;
    std::string timeZone_;
};

} // namespace kestrin
