#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/numberformatter.h>
#include <unordered_map>

namespace kestrin {

/// ICU's formatters of one pair of locales, made once: to make a date formatter takes twenty times as long as to
/// format a date. Belongs to one thread. Every function gives "" when ICU has no data at all.
class LocaleFormatters {
public:
    LocaleFormatters(const std::string& timeLocale, const std::string& numberLocale);
    /// Those of the calling thread, which keeps the pair that it used last.
    static LocaleFormatters& ofThisThread(const std::string& timeLocale, const std::string& numberLocale);

    std::string time(std::chrono::sys_seconds when, const std::string& timeZone);
    std::string dateAndTime(std::chrono::sys_seconds when, const std::string& timeZone);
    [[nodiscard]] std::string integer(std::int64_t value) const;
    [[nodiscard]] std::string percentage(double ratio) const;
    [[nodiscard]] std::string milliseconds(std::int64_t value) const;
    [[nodiscard]] std::string seconds(double value) const;

private:
    /// The texts of one format. Checks of one cycle share their moments and every redraw repeats them.
    struct MomentFormat {
        std::unique_ptr<icu::DateFormat> format;
        std::unordered_map<std::int64_t, std::string> texts; ///< by the second since 1970
    };
    std::string momentText(MomentFormat& format, std::chrono::sys_seconds when, const std::string& timeZone);
    void setTimeZone(const std::string& timeZone);

    std::string timeLocale_;
    std::string numberLocale_;
    std::string timeZone_;
    std::unique_ptr<icu::Calendar> calendar_;
    MomentFormat time_;
    MomentFormat dateAndTime_;
    icu::number::LocalizedNumberFormatter integer_;
    icu::number::LocalizedNumberFormatter percentage_;
    icu::number::LocalizedNumberFormatter milliseconds_;
    icu::number::LocalizedNumberFormatter seconds_;
};

} // namespace kestrin
