#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kestrin {

/// Writes times and figures the way the user's locale does: times by LC_TIME, numbers by LC_NUMERIC. A plain value
/// of names, cheap to copy; any thread.
class LocaleFormats {
public:
    /// Names as POSIX gives them, "de_DE.UTF-8" for instance; a time locale may name its hour cycle by ICU's
    /// keyword, "en_US@hours=h23". `timeZone` is an Olson name, or empty for the machine's, which is then looked up
    /// for every text: a change of it shows at once.
    LocaleFormats(std::string timeLocale, std::string numberLocale, std::string timeZone = {});
    [[nodiscard]] static LocaleFormats fromEnvironment();
    /// The same with the machine's present time zone looked up, for many texts that are made at one time.
    [[nodiscard]] LocaleFormats withPresentTimeZone() const;

    /// The time of day alone, short: "9:05 AM", "09:05".
    [[nodiscard]] std::string time(std::chrono::sys_seconds when) const;
    /// The date with an abbreviated month, and the short time: "Jan 31, 2026, 9:05 AM", "31. Jan. 2026, 09:05".
    [[nodiscard]] std::string dateAndTime(std::chrono::sys_seconds when) const;
    /// Below a second in whole milliseconds, from there in seconds with one digit: "999ms", "1.0s", "1,2 Sek.".
    [[nodiscard]] std::string duration(std::int64_t milliseconds) const;
    /// A whole number with the locale's digits and groups: "1,234", "1.234".
    [[nodiscard]] std::string integer(std::int64_t value) const;
    /// A ratio as per cent with exactly one fraction digit: "33.3%" for a third.
    [[nodiscard]] std::string percentage(double ratio) const;

private:
    std::string timeLocale_;
    std::string numberLocale_;
    std::string timeZone_;
};

} // namespace kestrin
